// Except, ObjectBase and AutoArr.
#include <tevbase/autoarr.h>
#include <tevbase/except.h>
#include <tevbase/objectbase.h>

#include <gtest/gtest.h>

TEST(ExceptTest, ToStringLeavesOutAbsentParts)
{
    const struct { Except e; const char* text; } rows[] = {
        {Except(), "unknown"}, {Except("cannot open", "x.txt"), "cannot open, x.txt"},
        {Except("cannot open", "x.txt", "pathname", 42), "cannot open, x.txt, thrown in pathname:42"},
        {Except("cannot open", "pathname", 0), "cannot open, thrown in pathname:0"},
        {Except("cannot open", "pathname", -1), "cannot open"}, // no line, no place
        {Except("cannot open", String_t(), "", 7), "cannot open"}, {Except(nullptr, "detail"), ""},
    };
    for (const auto& r : rows)
        EXPECT_STREQ(r.e.ToString().Text(), r.text);

    Except copy;
    copy = rows[2].e;
    copy = static_cast<const Except&>(copy);
    EXPECT_EQ(copy.ToString(), rows[2].text);
    EXPECT_EQ(copy.Detail().Chars(), rows[2].e.Detail().Chars()); // shared representation
}

TEST(ObjectBaseTest, IsAMatchesTheTypeName)
{
    const ObjectBase o;
    EXPECT_STREQ(ObjectBase::TypeName(), "ObjectBase");
    EXPECT_TRUE(o.IsA("ObjectBase"));
    EXPECT_FALSE(o.IsA("Other"));
}

TEST(AutoArrTest, OwnershipTransfersAndResetFreesOnlyOnChange)
{
    AutoArr<char> a(new char[4]);
    char* raw = a.Get();
    a[0] = 'x';
    AutoArr<char> b(a); // transfer
    EXPECT_TRUE(!a);
    b = static_cast<AutoArr<char>&>(b);
    b.Reset(raw); // same pointer: nothing freed
    EXPECT_EQ(b[0], 'x');
    a = b;
    EXPECT_TRUE(!b);
    EXPECT_EQ(static_cast<char*>(a), raw);
    delete[] a.Release();
    EXPECT_TRUE(!a);
    a = new char[2];
    EXPECT_FALSE(!a);
}
