// TVector: checked access, copies, resizing; TSortedVector and ArrBFindCore over poll records.
#include <generic/tvector>

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include <support/testutil.h>

namespace {

// The assertion report of TVector's operator[] at its line.
std::string VectorAssertion(int line, const std::string& signature)
{
    std::string p =
        testutil::AssertionPattern("include/generic/tvector", signature, "m != 0 && 0 <= r && r < rows");
    return p.replace(p.find("[0-9]+"), 6, std::to_string(line));
}

TEST(TVectorTest, CheckedAccessFailsOutsideTheRows)
{
    TVector<int> empty(0);
    EXPECT_EQ(static_cast<int*>(empty), nullptr);
    EXPECT_EQ(empty.Rows(), 0);
    EXPECT_DEATH(empty[0], VectorAssertion(32, "T& TVector<T>::operator[](int) [with T = int]"));
    TVector<double> v(3);
    v.Preset(1.5);
    const TVector<double>& cv = v;
    EXPECT_EQ(cv[2], 1.5);
    EXPECT_DEATH(cv[3], VectorAssertion(36, "const T& TVector<T>::operator[](int) const [with T = double]"));
    EXPECT_DEATH(v[-1], VectorAssertion(32, "T& TVector<T>::operator[](int) [with T = double]"));
    TVector<String_t> s(-4);
    EXPECT_EQ(static_cast<const String_t*>(s), nullptr);
    EXPECT_DEATH(s[0], VectorAssertion(32, "T& TVector<T>::operator[](int) [with T = String_t]"));
}

TEST(TVectorTest, ResizeKeepsTheFrontAndCopiesAreDeep)
{
    TVector<int> v(0);
    EXPECT_NE(v.Resize(3), nullptr);
    EXPECT_EQ(v.Rows(), 3);
    for (int i = 0; i < 3; ++i)
        v[i] = 10 + i;
    int* same = v;
    EXPECT_EQ(v.Resize(3), same);
    v.Resize(5);
    EXPECT_EQ(v(0), 10);
    EXPECT_EQ(v(2), 12);
    v.Resize(2);
    EXPECT_EQ(v.Rows(), 2);
    EXPECT_EQ(v[1], 11);
    EXPECT_EQ(v.Resize(0), nullptr);
    EXPECT_EQ(v.Rows(), 0);

    TVector<String_t> a(2);
    a[0] = "x";
    a[1] = "y";
    TVector<String_t> b(a);
    b[0] = "changed";
    EXPECT_EQ(a[0], "x");
    TVector<String_t> c(7);
    c = a;
    EXPECT_EQ(c.Rows(), 2);
    EXPECT_EQ(c[1], "y");
    const TVector<String_t>& same_c = c;
    c = same_c;
    EXPECT_EQ(c[0], "x");
    c = TVector<String_t>(0);
    EXPECT_EQ(static_cast<String_t*>(c), nullptr);
    TVector<String_t> none(c);
    EXPECT_EQ(none.Rows(), 0);
}

} // namespace

namespace {

typedef TSortedVector<SockIO::PollFd, SockIO::PollFd::Compare> PollSet;

std::vector<int> Fds(const PollSet& s)
{
    std::vector<int> fds;
    for (unsigned i = 0; i < s.Len(); ++i)
        fds.push_back(s[i].fd);
    return fds;
}

struct IntCmp {
    int operator()(int a, int b) const { return (a > b) - (a < b); }
};

TEST(ArrBFindCoreTest, FindsTheKeyOrItsInsertionPoint)
{
    int a[] = {10, 20, 30, 40, 40, 40, 50};
    const struct {
        int key;
        unsigned n;
        int at;
        int found;
    } rows[] = {
        {5, 4, 0, 0},  {10, 4, 0, 1}, {25, 4, 2, 0}, {40, 4, 3, 1}, {45, 4, 4, 0},
        {45, 7, 6, 0}, {60, 7, 7, 0}, {10, 1, 0, 1}, {0, 1, 0, 0},  {5, 0, 0, 0},
    };
    for (const auto& row : rows) {
        TResult<int> r = ArrBFindCore(a, row.n, row.key, IntCmp());
        EXPECT_EQ(r.pos - a, row.at) << row.key << " in " << row.n;
        EXPECT_EQ(r.found, row.found) << row.key << " in " << row.n;
    }
    TResult<int> dup = ArrBFindCore(a, 7, 40, IntCmp());
    EXPECT_EQ(*dup.pos, 40);
    EXPECT_EQ(dup.found, 1);
}

TEST(TSortedVectorTest, InsertFindRemoveKeepTheOrder)
{
    PollSet s;
    EXPECT_EQ(s.Find(SockIO::PollFd(5)), nullptr);
    for (int fd : {5, 3, 9}) {
        TResult<SockIO::PollFd> r = s.Insert(SockIO::PollFd(fd, 1));
        EXPECT_EQ(r.found, 1);
        EXPECT_EQ(r.pos->fd, fd);
    }
    EXPECT_EQ(Fds(s), (std::vector<int>{3, 5, 9}));
    TResult<SockIO::PollFd> again = s.Insert(SockIO::PollFd(5, 4));
    EXPECT_EQ(again.found, 0);
    EXPECT_EQ(again.pos, s.Get() + 1);
    EXPECT_EQ(again.pos->events, 1); // the stored record is not replaced
    EXPECT_EQ(s.Len(), 3u);
    EXPECT_EQ(s.Remove(SockIO::PollFd(4)), 0);
    EXPECT_EQ(s.Contains(SockIO::PollFd(9)), 1);
    EXPECT_EQ(s.Find(SockIO::PollFd(9)), s.Get() + 2);
    EXPECT_EQ(s.Remove(SockIO::PollFd(3)), 1);
    EXPECT_EQ(Fds(s), (std::vector<int>{5, 9}));
    EXPECT_EQ(s.Insert(s[1]).found, 0); // an element of our own

    PollSet copy(s);
    copy.Insert(SockIO::PollFd(1));
    EXPECT_EQ(Fds(s), (std::vector<int>{5, 9}));
    s.Clear();
    EXPECT_EQ(s.Len(), 0u);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(s.Get()[i].fd, -1);
        EXPECT_EQ(s.Get()[i].events, 0);
    }
    EXPECT_DEATH(s[0], testutil::AssertionPattern("include/generic/tvarr",
                                                  "T& TVarr<T>::operator[](int) [with T = SockIO::PollFd]",
                                                  "i < (arrp-arr)"));
}

TEST(TSortedVectorTest, RandomRunMatchesASet)
{
    std::mt19937 rng(8);
    PollSet s(4); // small, to grow often
    std::set<int> model;
    for (int step = 0; step < 3000; ++step) {
        const int fd = static_cast<int>(rng() % 300) - 150;
        if (rng() % 3 != 0) {
            TResult<SockIO::PollFd> r = s.Insert(SockIO::PollFd(fd));
            ASSERT_EQ(r.found, model.insert(fd).second ? 1 : 0);
            ASSERT_EQ(r.pos->fd, fd);
        } else {
            ASSERT_EQ(s.Remove(SockIO::PollFd(fd)), static_cast<int>(model.erase(fd)));
        }
        ASSERT_EQ(Fds(s), std::vector<int>(model.begin(), model.end())) << "step " << step;
        const PollSet& cs = s;
        ASSERT_EQ(cs.Contains(SockIO::PollFd(fd)), static_cast<int>(model.count(fd)));
    }
}

} // namespace
