// TVector: checked access with its assertion reports, copies, resizing.
#include <generic/tvector>

#include <gtest/gtest.h>

#include <string>

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
