// ByteString: construction, sharing and writing through, derived strings, prefix equality.
#include <tevbase/bytestring.h>

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

// The bytes; "<null>" for null data, which must come with size 0.
static std::string Bytes(const ByteString& b)
{
    return b.Data() != nullptr ? std::string(b.Data(), b.Size()) : b.Size() == 0 ? "<null>" : "<null, sized>";
}

TEST(ByteStringTest, ConstructorsAndPrefixEquality)
{
    const struct { ByteString b; const char* bytes; } rows[] = {
        {ByteString("abc", 0), "<null>"}, {ByteString(nullptr, 3), "<null>"}, {ByteString(0, "abc", 3, 'x'), "<null>"},
        {ByteString(5, "abc", 3, 'x'), "abcxx"}, {ByteString(2, "abc", 3, 'x'), "ab"},
        {ByteString(3, nullptr, 3, 'q'), "qqq"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Bytes(r.b), r.bytes);
    const struct { ByteString a, b; bool equal; } pairs[] = {
        {ByteString("ab", 2), ByteString("abc", 3), true}, // the shorter size decides
        {ByteString(), ByteString("", 0), true}, {ByteString(), ByteString("a", 1), false},
        {ByteString("a\0x", 3), ByteString("a\0y", 3), false},
    };
    for (const auto& p : pairs)
        EXPECT_EQ(p.a == p.b, p.equal) << Bytes(p.a) << " vs " << Bytes(p.b);
}

TEST(ByteStringTest, ChangesDetachExceptEraseReserveRedefine)
{
    ByteString s;
    s.Append('z', 3);
    ByteString t = s, u = s;
    t.Append("x\0", 2);
    u.Prepend("<", 1).Prepend('-', 2);
    EXPECT_EQ(Bytes(s) + "|" + Bytes(t) + "|" + Bytes(u), std::string("zzz|zzzx\0|--<zzz", 16));
    u.Append(nullptr, 4);         // null source: nothing
    u.Append(u.Data(), u.Size()); // the source is our own array
    u.Prepend(u.Data() + 3, 3);
    EXPECT_EQ(Bytes(u), "zzz--<zzz--<zzz");
    EXPECT_EQ(Bytes(ByteString().Append("abc", 0).Prepend('x', 0)), "<null>");
    t = s; // a size past 32 bits throws before anything changes, also when shared
    EXPECT_THROW(t.Append('y', 0xFFFFFFFFu), std::bad_alloc);
    EXPECT_EQ(t.Data(), s.Data());

    s.Erase('0'); // these write through the shared representation
    EXPECT_EQ(Bytes(t), "000");
    std::memcpy(s.Reserve(4), "wxyz", 4);
    EXPECT_EQ(Bytes(t), "wxyz");
    char* mine = new char[2]{'h', 'i'};
    s.Redefine(mine, 2);
    EXPECT_EQ(Bytes(t), "hi");
    s.Redefine(mine, 1); // the same array, shorter
    EXPECT_EQ(Bytes(t), "h");
    EXPECT_EQ(s.Reserve(0), nullptr);
    EXPECT_EQ(t.Save(), nullptr);
    s.Redefine(new char[3], 0); // adopted and freed
    EXPECT_EQ(t.Data(), nullptr);
}

TEST(ByteStringTest, SubStrAndSubst)
{
    const ByteString s("abcd", 4);
    const struct { unsigned from, to; const char* bytes; } rows[] = {
        {1, 0, "<null>"}, {1, 99, "bcd"}, {3, 3, "d"}, {4, 9, "<null>"}, {0, 0xFFFFFFFFu, "abcd"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Bytes(s.SubStr(r.from, r.to)), r.bytes) << r.from << ".." << r.to;
    EXPECT_EQ(Bytes(ByteString("a\0a", 3).Subst('a', 'b')), std::string("b\0a", 3)); // stops at the zero byte
    EXPECT_EQ(Bytes(ByteString("aaa", 3).Subst('a', '\0')), std::string(3, '\0'));
    EXPECT_EQ(Bytes(ByteString("x.y_\0.", 6).Subst("._", 2, '!')), std::string("x!y!\0.", 6));
    EXPECT_EQ(Bytes(s.Subst(nullptr, 3, '!')), "abcd");
}
