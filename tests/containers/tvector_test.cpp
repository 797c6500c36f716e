// TVector: checked access, resizing, copies; TSortedVector and ArrBFindCore over poll records.
#include <generic/tvector>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include <support/testutil.h>

namespace {

using SockIO::PollFd;
typedef TSortedVector<PollFd, PollFd::Compare> PollSet;
typedef std::vector<std::pair<int, short>> Records; // descriptor and events

TEST(TVectorDeathTest, CheckedAccessFailsOutsideTheRowsAndResizeKeepsTheFront)
{
    auto report = [](const char* sig) {
        return testutil::AssertionPattern("include/generic/tvector", sig, "m != 0 && 0 <= r && r < rows");
    };
    TVector<int> v(0);
    EXPECT_DEATH(v[0], report("T& TVector<T>::operator[](int) [with T = int]"));
    const TVector<double> cv(3);
    EXPECT_DEATH(cv[3], report("const T& TVector<T>::operator[](int) const [with T = double]"));
    TVector<String_t> a(2);
    EXPECT_DEATH(a[-1], report("T& TVector<T>::operator[](int) [with T = String_t]"));
    v.Resize(2);
    v.Preset(7);
    v[0] = 10;
    v.Resize(5);
    EXPECT_TRUE(v(0) == 10 && v(1) == 7 && v.Rows() == 5 && v.Resize(0) == nullptr);
    a.Preset("x");
    TVector<String_t> b(a), c(7);
    c = b;
    b[0] = "changed";
    EXPECT_TRUE(a[0] == "x" && c.Rows() == 2 && c[0] == "x");
}

// Among equal elements the bisection's first hit is found (index 4 of the first six, not the first 40).
// The sorted vector's run below meets the other bounds: positions before the first element and past the
// last, and an empty array.
TEST(ArrBFindCoreTest, FindsTheFirstEqualElementItMeets)
{
    int a[] = {10, 20, 30, 40, 40, 40, 50};
    TResult<int> r = ArrBFindCore(a, 6, 40, [](int x, int y) { return (x > y) - (x < y); });
    EXPECT_TRUE(r.pos == a + 4 && r.found == 1);
}

// Poll records inserted and removed at random against a std::map of descriptor to events, from a
// vector that starts small to grow often. A record that is there already is not replaced.
TEST(TSortedVectorTest, RandomRunMatchesAMap)
{
    PollSet s(3);
    EXPECT_EQ(s.Find(PollFd(5)), nullptr);
    for (int fd : {5, 3, 9})
        s.Insert(PollFd(fd, 1));
    const TResult<PollFd> own = s.Insert(s[2]); // an element of its own, as the storage grows
    EXPECT_TRUE(own.found == 0 && own.pos == s.Get() + 2);
    std::map<int, short> model = {{3, 1}, {5, 1}, {9, 1}};
    std::mt19937 rng(8);
    for (int step = 0; step < 3000 && !HasFatalFailure(); ++step) {
        const int fd = static_cast<int>(rng() % 300) - 150;
        if (rng() % 3 != 0) {
            const TResult<PollFd> r = s.Insert(PollFd(fd, static_cast<short>(step)));
            ASSERT_EQ(r.found, model.emplace(fd, static_cast<short>(step)).second ? 1 : 0);
            ASSERT_TRUE(r.pos->fd == fd && r.pos->events == model[fd]);
        } else {
            ASSERT_EQ(s.Remove(PollFd(fd)), static_cast<int>(model.erase(fd)));
        }
        Records got;
        for (unsigned i = 0; i < s.Len(); ++i)
            got.emplace_back(s[i].fd, s[i].events);
        ASSERT_EQ(got, Records(model.begin(), model.end())) << "step " << step;
        ASSERT_EQ(static_cast<const PollSet&>(s).Contains(PollFd(fd)), static_cast<int>(model.count(fd)));
    }
    s.Clear();
    EXPECT_EQ(s.Len(), 0u);
    for (unsigned i = 0; i < model.size(); ++i)
        ASSERT_TRUE(s.Get()[i].fd == -1 && s.Get()[i].events == 0);
}

} // namespace
