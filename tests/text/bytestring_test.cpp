// ByteString: construction, sharing and writing through, derived strings, prefix equality.
#include <tevbase/bytestring.h>

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

namespace {

std::string Bytes(const ByteString& b)
{
    return b.Data() != nullptr ? std::string(b.Data(), b.Size()) : std::string("<null>");
}

} // namespace

TEST(ByteStringTest, ConstructorsAndPrefixEquality)
{
    const struct { ByteString b; std::string bytes; } rows[] = {
        {ByteString("abc", 0), "<null>"}, {ByteString(nullptr, 3), "<null>"}, {ByteString(0, "abc", 3, 'x'), "<null>"},
        {ByteString("a\0b", 3), std::string("a\0b", 3)}, {ByteString(3, 'z'), "zzz"},
        {ByteString(5, "abc", 3, 'x'), "abcxx"}, {ByteString(2, "abc", 3, 'x'), "ab"},
        {ByteString(3, nullptr, 3, 'q'), "qqq"},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(Bytes(r.b), r.bytes);
        EXPECT_EQ(r.b.Size(), r.bytes == "<null>" ? 0u : r.bytes.size());
    }

    const struct { ByteString a, b; bool equal; } pairs[] = {
        {ByteString("ab", 2), ByteString("abc", 3), true}, // the shorter size decides
        {ByteString(), ByteString("", 0), true}, {ByteString(), ByteString("a", 1), false},
        {ByteString("a", 1), ByteString(), false}, {ByteString("a\0x", 3), ByteString("a\0y", 3), false},
    };
    for (const auto& p : pairs)
        EXPECT_EQ(p.a == p.b, p.equal) << Bytes(p.a) << " vs " << Bytes(p.b);
}

TEST(ByteStringTest, AppendAndPrependDetachFromCopies)
{
    ByteString s;
    s.Append('z', 3);
    ByteString t = s;
    t.Append("x\0", 2);
    EXPECT_EQ(Bytes(t), std::string("zzzx\0", 5));
    t = s;
    t.Prepend("<", 1).Prepend('-', 2);
    EXPECT_EQ(Bytes(t), "--<zzz");
    EXPECT_EQ(Bytes(s), "zzz");
    t.Append(nullptr, 4);         // null source: nothing
    t.Append(t.Data(), t.Size()); // the source is our own array
    t.Prepend(t.Data() + 3, 3);
    EXPECT_EQ(Bytes(t), "zzz--<zzz--<zzz");

    ByteString e;
    e.Append("abc", 0);
    e.Prepend('x', 0);
    EXPECT_EQ(e.Data(), nullptr);
    // A size past 32 bits throws before anything changes, also for a shared string.
    ByteString shared = s;
    EXPECT_THROW(shared.Append('y', 0xFFFFFFFFu), std::bad_alloc);
    EXPECT_EQ(shared.Data(), s.Data());
}

TEST(ByteStringTest, EraseReserveRedefineWriteThroughSharedRepresentation)
{
    ByteString s("abc", 3);
    ByteString t = s;
    t.Erase('0');
    EXPECT_EQ(Bytes(s), "000");
    char* buf = s.Reserve(4);
    std::memcpy(buf, "wxyz", 4);
    EXPECT_EQ(Bytes(t), "wxyz");
    char* mine = new char[2]{'h', 'i'};
    t.Redefine(mine, 2);
    EXPECT_EQ(Bytes(s), "hi");
    s.Redefine(mine, 1); // the same array, shorter
    EXPECT_EQ(Bytes(t), "h");
    char* saved = t.Save();
    EXPECT_NE(saved, t.Data());
    EXPECT_EQ(saved[0], 'h');
    delete[] saved;
    EXPECT_EQ(s.Reserve(0), nullptr);
    EXPECT_EQ(t.Save(), nullptr);
    t.Redefine(new char[3], 0); // adopted and freed
    EXPECT_EQ(s.Data(), nullptr);
}

TEST(ByteStringTest, SubStrAndSubst)
{
    const ByteString s("abcd", 4);
    const struct { unsigned from, to; const char* bytes; } rows[] = {
        {1, 0, "<null>"}, {1, 99, "bcd"}, {3, 3, "d"}, {4, 9, "<null>"}, {0, 0xFFFFFFFFu, "abcd"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Bytes(s.SubStr(r.from, r.to)), r.bytes) << r.from << ".." << r.to;

    const ByteString z("a\0a", 3);
    EXPECT_EQ(Bytes(z.Subst('a', 'b')), std::string("b\0a", 3)); // stops at the zero byte
    EXPECT_EQ(Bytes(ByteString("aaa", 3).Subst('a', '\0')), std::string(3, '\0'));
    EXPECT_EQ(Bytes(ByteString("x.y_\0.", 6).Subst("._", 2, '!')), std::string("x!y!\0.", 6));
    EXPECT_EQ(Bytes(s.Subst(nullptr, 3, '!')), "abcd");
}
