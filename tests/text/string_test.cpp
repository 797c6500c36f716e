// String_t: sharing and detaching, derived strings, comparison, stream input.
#include <tevbase/string.h>

#include <gtest/gtest.h>

#include <cstring>
#include <iomanip>
#include <new>
#include <sstream>

const char* const null_text = nullptr;

TEST(StringTest, NullDataDiffersFromEmptyTextOnlyAgainstPointers)
{
    const String_t null_data, empty("");
    EXPECT_TRUE(null_data != "" && null_data == null_text);
    EXPECT_TRUE(empty == "" && empty != null_text);
    EXPECT_TRUE(null_data == empty); // as texts
    EXPECT_TRUE(String_t("abc", 0).IsNull() && String_t(nullptr, 5).IsNull());
    EXPECT_EQ(String_t("ab", 5) + "|" + String_t("abcdef", 3), "ab|abc");
}

TEST(StringTest, ChangesDetachFromSharedCopiesExceptReserve)
{
    String_t s("base"), t = s, u = s, v = s;
    EXPECT_EQ(s.Chars(), t.Chars());
    t += "x";
    u.Prepend(">");
    v = "other";
    EXPECT_EQ(s + "|" + t + "|" + u + "|" + v, "base|basex|>base|other");
    s += null_text;
    s = static_cast<const String_t&>(s);
    s += s; // the source is one of our own texts
    s.Prepend(s.Chars());
    EXPECT_EQ(s, "basebasebasebase");
    s = null_text;
    EXPECT_TRUE(s.IsNull());
    s += "";
    EXPECT_FALSE(s.IsNull()); // "" appended to null data is a non-null empty text

    t = s;
    std::strcpy(s.Reserve(4), "0123");
    EXPECT_EQ(t, "0123"); // deliberately: every copy sees the new text
    char* saved = t.Save();
    EXPECT_TRUE(saved != t.Chars() && std::strcmp(saved, "0123") == 0);
    delete[] saved;
    EXPECT_EQ(String_t().Save(), nullptr);
    EXPECT_THROW(s.Reserve(0xFFFFFFFFu), std::bad_alloc); // the 32-bit length overflows: nothing changes
    EXPECT_EQ(t, "0123");
}

TEST(StringTest, DerivedStrings)
{
    const String_t hello("hello");
    EXPECT_EQ(hello.SubStr(1, 3) + "|" + hello.SubStr(3, 100), "ell|lo");
    EXPECT_TRUE(hello.SubStr(2, 1).IsNull() && hello.SubStr(5, 9).IsNull());
    const struct { const char *in, *trim, *left, *right; } rows[] = { // null stands for null data
        {"  a b  ", "a b", "a b  ", "  a b"}, {"   ", nullptr, " ", nullptr}, {" ", nullptr, " ", nullptr},
        {"", nullptr, nullptr, nullptr}, {"\t\nx\r", "x", "x\r", "\t\nx"}, {nullptr, nullptr, nullptr, nullptr},
    };
    for (const auto& r : rows) {
        const String_t s(r.in);
        EXPECT_TRUE(s.Trim() == r.trim && s.TrimLeft() == r.left && s.TrimRight() == r.right) << r.in;
    }
    const String_t s("Hello, World 1\xe9");
    EXPECT_EQ(s.Toupper() + "|" + s.Tolower(), "HELLO, WORLD 1\xe9|hello, world 1\xe9");
    EXPECT_EQ(s.Subst('o', '0') + "|" + s.Subst(", ", '_') + "|" + s.Subst(null_text, '_'),
              "Hell0, W0rld 1\xe9|Hello__World_1\xe9|Hello, World 1\xe9");
    EXPECT_TRUE(String_t().Subst('a', 'b').IsNull());
}

TEST(StringTest, WordAndLineInput)
{
    std::istringstream words(" one\ttwo");
    String_t a, b, c("kept");
    EXPECT_TRUE(words >> a >> b); // a word that ends the stream clears its state
    EXPECT_FALSE(words >> c);
    EXPECT_EQ(a + "," + b + "," + c, "one,two,kept");

    std::istringstream lines("one\r\ntwo"), more("\na\rb\r\r\nx\ny");
    const struct { std::istream& in; const char* delim; const char* text; bool good; } reads[] = {
        {lines, "\r\n", "one", true}, {lines, "\r\n", "two", true}, {lines, "\r\n", nullptr, false}, // null data
        {more, "\n", "", true}, {more, "\r\n", "a\rb\r", true}, {more, nullptr, "x\ny", true},
    };
    for (const auto& r : reads) {
        String_t line("old");
        EXPECT_EQ(!String_t::Getline(r.in, line, r.delim).fail(), r.good) << r.text;
        EXPECT_TRUE(line == r.text) << r.text; // an empty line is told apart from no line
    }
    std::ostringstream out;
    out << std::setw(5) << std::setfill('.') << String_t("ab") << '|' << String_t() << '|';
    EXPECT_EQ(out.str(), "...ab||");
}
