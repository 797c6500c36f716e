// Except, ObjectBase and AutoArr.
#include <tevbase/autoarr.h>
#include <tevbase/except.h>
#include <tevbase/objectbase.h>

#include <gtest/gtest.h>

#include <cstring>

TEST(ExceptTest, ToStringLeavesOutAbsentParts)
{
    struct Row {
        Except e;
        const char* text;
    } rows[] = {
        {Except(), "unknown"},
        {Except("failed"), "failed"},
        {Except("cannot open", "x.txt"), "cannot open, x.txt"},
        {Except("cannot open", "x.txt", "pathname", 42), "cannot open, x.txt, thrown in pathname:42"},
        {Except("cannot open", "pathname", 0), "cannot open, thrown in pathname:0"},
        {Except("cannot open", "pathname", -1), "cannot open"}, // no line, no place
        {Except("cannot open", String_t(), "", 7), "cannot open"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(r.e.ToString(), r.text);

    const Except null_message(nullptr, "detail");
    EXPECT_EQ(null_message.ToString().Length(), 0u);
}

TEST(ExceptTest, CopiesShareAndThrowCarriesTheFields)
{
    Except a("m", "d", "f.cpp", 3);
    Except b;
    b = a;
    const Except& same = b;
    b = same;
    EXPECT_EQ(b.ToString(), "m, d, thrown in f.cpp:3");
    EXPECT_EQ(b.Detail().Chars(), a.Detail().Chars()); // shared representation
    try {
        throw Except("bad", String_t("x"), "g.cpp", 9);
    } catch (const Except& e) {
        EXPECT_STREQ(e.Message(), "bad");
        EXPECT_EQ(e.Line(), 9);
    }
}

TEST(ObjectBaseTest, IsAMatchesTheTypeName)
{
    struct Derived : ObjectBase {
        bool IsA(const char* name) const override
        {
            return (name && std::strcmp(name, "Derived") == 0) || ObjectBase::IsA(name);
        }
    } d;
    const ObjectBase& o = d;
    EXPECT_STREQ(ObjectBase::TypeName(), "ObjectBase");
    EXPECT_TRUE(o.IsA("ObjectBase"));
    EXPECT_TRUE(o.IsA("Derived"));
    EXPECT_FALSE(o.IsA("Other"));
}

TEST(AutoArrTest, OwnershipTransfersAndResetFreesOnlyOnChange)
{
    AutoArr<char> a(new char[4]);
    char* raw = a.Get();
    a[0] = 'x';
    AutoArr<char> b(a); // transfer
    EXPECT_TRUE(!a);
    EXPECT_EQ(b.GetArrp(), raw);
    AutoArr<char>& same = b;
    b = same;
    EXPECT_EQ(static_cast<char*>(b), raw);
    b.Reset(raw); // same pointer: nothing freed
    EXPECT_EQ(b[0], 'x');
    a = b;
    EXPECT_TRUE(!b);
    char* released = a.Release();
    EXPECT_TRUE(!a);
    delete[] released;
    a = new char[2];
    EXPECT_FALSE(!a);
}
