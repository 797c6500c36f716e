// TVector: checked access, copies, resizing; TSortedVector and ArrBFindCore over poll records.
#include <generic/tvector>

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include <support/testutil.h>

namespace {

using SockIO::PollFd;
typedef TSortedVector<PollFd, PollFd::Compare> PollSet;

TEST(TVectorDeathTest, CheckedAccessFailsOutsideTheRows)
{
    auto report = [](const std::string& signature) {
        const char* expr = "m != 0 && 0 <= r && r < rows";
        return testutil::AssertionPattern("include/generic/tvector", signature, expr);
    };
    TVector<int> empty(0);
    EXPECT_EQ(static_cast<int*>(empty), nullptr);
    EXPECT_DEATH(empty[0], report("T& TVector<T>::operator[](int) [with T = int]"));
    const TVector<double> cv(3);
    EXPECT_DEATH(cv[3], report("const T& TVector<T>::operator[](int) const [with T = double]"));
    TVector<String_t> s(2);
    EXPECT_DEATH(s[-1], report("T& TVector<T>::operator[](int) [with T = String_t]"));
}

TEST(TVectorTest, ResizeKeepsTheFrontAndCopiesAreDeep)
{
    TVector<int> v(-4);
    int* fresh = v.Resize(3);
    EXPECT_TRUE(fresh != nullptr && fresh == static_cast<int*>(v) && v.Rows() == 3);
    v.Preset(7);
    v[0] = 10;
    int* same = v;
    EXPECT_EQ(v.Resize(3), same);
    v.Resize(5);
    EXPECT_TRUE(v(0) == 10 && v(1) == 7 && v(2) == 7);
    v.Resize(2);
    EXPECT_EQ(v.Rows(), 2);
    EXPECT_EQ(v[1], 7);
    EXPECT_EQ(v.Resize(0), nullptr);
    EXPECT_EQ(v.Rows(), 0);

    TVector<String_t> a(2);
    a.Preset("x");
    TVector<String_t> b(a), c(7);
    b[0] = "changed";
    c = a;
    const TVector<String_t>& same_c = c;
    c = same_c;
    EXPECT_TRUE(a[0] == "x" && c.Rows() == 2 && c[1] == "x");
    c = TVector<String_t>(0);
    EXPECT_EQ(static_cast<String_t*>(c), nullptr);
    EXPECT_EQ(TVector<String_t>(c).Rows(), 0);
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
        int at, found;
    } rows[] = {{5, 4, 0, 0},  {10, 4, 0, 1}, {25, 4, 2, 0}, {40, 4, 3, 1}, {45, 4, 4, 0}, {45, 7, 6, 0},
                {60, 7, 7, 0}, {10, 1, 0, 1}, {0, 1, 0, 0},  {5, 0, 0, 0},  {40, 7, 3, 1}};
    for (const auto& row : rows) {
        TResult<int> r = ArrBFindCore(a, row.n, row.key, IntCmp());
        EXPECT_EQ(r.pos - a, row.at) << row.key << " in " << row.n;
        EXPECT_EQ(r.found, row.found) << row.key << " in " << row.n;
    }
}

std::vector<int> Fds(const PollSet& s)
{
    std::vector<int> fds;
    for (unsigned i = 0; i < s.Len(); ++i)
        fds.push_back(s[i].fd);
    return fds;
}

TEST(TSortedVectorTest, InsertFindRemoveKeepTheOrder)
{
    PollSet s;
    EXPECT_EQ(s.Find(PollFd(5)), nullptr);
    for (int fd : {5, 3, 9})
        EXPECT_EQ(s.Insert(PollFd(fd, 1)).found, 1);
    EXPECT_EQ(Fds(s), (std::vector<int>{3, 5, 9}));
    TResult<PollFd> again = s.Insert(PollFd(5, 4));
    EXPECT_EQ(again.found, 0);
    EXPECT_EQ(again.pos, s.Get() + 1);
    EXPECT_EQ(again.pos->events, 1); // the stored record is not replaced
    EXPECT_EQ(s.Remove(PollFd(4)), 0);
    EXPECT_EQ(s.Find(PollFd(9)), s.Get() + 2);
    EXPECT_EQ(s.Insert(s[2]).found, 0); // an element of our own
    EXPECT_EQ(Fds(s), (std::vector<int>{3, 5, 9}));

    PollSet copy(s);
    copy.Remove(PollFd(3));
    s.Clear();
    EXPECT_EQ(s.Len(), 0u);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(s.Get()[i].fd == -1 && s.Get()[i].events == 0);
    EXPECT_EQ(Fds(copy), (std::vector<int>{5, 9}));
    EXPECT_DEATH(s[0], testutil::AssertionPattern("include/generic/tvarr",
                                                  "T& TVarr<T>::operator[](int) [with T = SockIO::PollFd]",
                                                  "i < (arrp-arr)"));
}

TEST(TSortedVectorTest, RandomRunMatchesASet)
{
    std::mt19937 rng(8);
    PollSet s(4); // small, to grow often
    std::set<int> model;
    for (int step = 0; step < 3000 && !HasFatalFailure(); ++step) {
        const int fd = static_cast<int>(rng() % 300) - 150;
        if (rng() % 3 != 0) {
            TResult<PollFd> r = s.Insert(PollFd(fd));
            ASSERT_EQ(r.found, model.insert(fd).second ? 1 : 0);
            ASSERT_EQ(r.pos->fd, fd);
        } else {
            ASSERT_EQ(s.Remove(PollFd(fd)), static_cast<int>(model.erase(fd)));
        }
        ASSERT_EQ(Fds(s), std::vector<int>(model.begin(), model.end())) << "step " << step;
        ASSERT_EQ(static_cast<const PollSet&>(s).Contains(PollFd(fd)), static_cast<int>(model.count(fd)));
    }
}

} // namespace
