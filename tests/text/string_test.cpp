// String_t: sharing and detaching, derived strings, comparison, stream input.
#include <tevbase/string.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iomanip>
#include <new>
#include <sstream>

TEST(StringTest, NullDataDiffersFromEmptyTextOnlyAgainstPointers)
{
    const String_t null_data, empty("");
    EXPECT_FALSE(null_data == "");
    EXPECT_TRUE(null_data == static_cast<const char*>(nullptr));
    EXPECT_TRUE(empty == "");
    EXPECT_TRUE(empty != static_cast<const char*>(nullptr));
    EXPECT_TRUE(null_data == empty); // as texts
    EXPECT_TRUE(String_t("abc", 0).IsNull());
    EXPECT_TRUE(String_t(nullptr, 5).IsNull());
    EXPECT_EQ(String_t("ab", 5), "ab");
    EXPECT_EQ(String_t("abcdef", 3), "abc");
}

TEST(StringTest, ChangesDetachFromSharedCopies)
{
    String_t s("base");
    String_t t = s;
    EXPECT_EQ(s.Chars(), t.Chars());
    t += "x";
    EXPECT_EQ(t, "basex");
    t = s;
    t.Prepend(">");
    EXPECT_EQ(t, ">base");
    t = s;
    t = "other";
    EXPECT_EQ(s, "base");

    s += static_cast<const char*>(nullptr);
    const String_t& same = s;
    s = same;
    s += s; // the source is one of our own texts
    s.Prepend(s.Chars());
    EXPECT_EQ(s, "basebasebasebase");
    s = static_cast<const char*>(nullptr);
    EXPECT_TRUE(s.IsNull());
    s += "";
    EXPECT_FALSE(s.IsNull()); // "" appended to null data is a non-null empty text
    EXPECT_EQ(String_t("a") + "b" + String_t("c"), "abc");
}

TEST(StringTest, ReserveWritesThroughSharedRepresentation)
{
    String_t s("shared");
    String_t t = s;
    char* buf = s.Reserve(10);
    EXPECT_EQ(t, ""); // deliberately: every copy loses the text
    std::strcpy(buf, "0123456789");
    EXPECT_EQ(t, "0123456789");
    char* saved = t.Save();
    EXPECT_STREQ(saved, "0123456789");
    EXPECT_NE(saved, t.Chars());
    delete[] saved;
    EXPECT_EQ(String_t().Save(), nullptr);
    // A 4 GiB text cannot exist: the 32-bit length overflows and nothing changes.
    EXPECT_THROW(s.Reserve(0xFFFFFFFFu), std::bad_alloc);
    EXPECT_EQ(t, "0123456789");
}

TEST(StringTest, DerivedStrings)
{
    const String_t hello("hello");
    EXPECT_EQ(hello.SubStr(1, 3), "ell");
    EXPECT_EQ(hello.SubStr(3, 100), "lo");
    EXPECT_TRUE(hello.SubStr(2, 1).IsNull());
    EXPECT_TRUE(hello.SubStr(5, 9).IsNull());

    const struct { const char *in, *trim, *left, *right; } rows[] = { // null stands for null data
        {"  a b  ", "a b", "a b  ", "  a b"}, {"   ", nullptr, " ", nullptr}, {" ", nullptr, " ", nullptr},
        {"", nullptr, nullptr, nullptr}, {"\t\nx\r", "x", "x\r", "\t\nx"}, {nullptr, nullptr, nullptr, nullptr},
    };
    for (const auto& r : rows) {
        const String_t s(r.in);
        EXPECT_TRUE(s.Trim() == r.trim) << r.in;
        EXPECT_TRUE(s.TrimLeft() == r.left) << r.in;
        EXPECT_TRUE(s.TrimRight() == r.right) << r.in;
    }

    const String_t s("Hello, World 1\xe9");
    EXPECT_EQ(s.Toupper(), "HELLO, WORLD 1\xe9");
    EXPECT_EQ(s.Tolower(), "hello, world 1\xe9");
    EXPECT_EQ(s.Subst('o', '0'), "Hell0, W0rld 1\xe9");
    EXPECT_EQ(s.Subst(", ", '_'), "Hello__World_1\xe9");
    EXPECT_EQ(s.Subst(static_cast<const char*>(nullptr), '_'), s);
    EXPECT_EQ(s, "Hello, World 1\xe9"); // derived strings leave the source alone
    EXPECT_TRUE(String_t().Subst('a', 'b').IsNull());
}

TEST(StringTest, WordAndLineInput)
{
    std::istringstream in("  abc");
    String_t w("old");
    EXPECT_TRUE(in >> w); // the word ended the stream, yet the stream is cleared
    EXPECT_FALSE(in >> w);
    EXPECT_EQ(w, "abc");
    std::istringstream two(" one\ttwo\n");
    String_t a, b, c("kept");
    EXPECT_FALSE(two >> a >> b >> c);
    EXPECT_EQ(a + "," + b + "," + c, "one,two,kept");

    std::istringstream lines("one\r\ntwo");
    EXPECT_TRUE(String_t::Getline(lines, w, "\r\n"));
    EXPECT_EQ(w, "one");
    EXPECT_TRUE(String_t::Getline(lines, w, "\r\n")); // cleared at the end
    EXPECT_EQ(w, "two");
    EXPECT_FALSE(String_t::Getline(lines, w, "\r\n"));
    EXPECT_TRUE(w.IsNull());
    std::istringstream more("\na\rb\r\r\nx\ny");
    EXPECT_TRUE(String_t::Getline(more, w, "\n"));
    EXPECT_FALSE(w.IsNull()); // an empty line is told apart from no line
    String_t::Getline(more, w, "\r\n");
    EXPECT_EQ(w, "a\rb\r");
    String_t::Getline(more, w, nullptr);
    EXPECT_EQ(w, "x\ny");

    std::ostringstream out;
    out << std::setw(5) << std::setfill('.') << String_t("ab") << '|' << String_t() << '|';
    EXPECT_EQ(out.str(), "...ab||");
}
