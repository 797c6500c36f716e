// String_t: sharing and detaching, derived strings, comparison, stream input.
#include <tevbase/string.h>

#include <gtest/gtest.h>

#include <cstring>
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
    EXPECT_EQ(null_data.Chars(), nullptr);
    EXPECT_STREQ(null_data.Text(), "");
    EXPECT_EQ(null_data.Length(), 0u);
    EXPECT_TRUE(String_t("abc", 0).IsNull());
    EXPECT_TRUE(String_t(nullptr, 5).IsNull());
    EXPECT_TRUE(String_t(static_cast<const char*>(nullptr)).IsNull());
    EXPECT_EQ(String_t("ab", 5), "ab");
    EXPECT_EQ(String_t("abcdef", 3), "abc");
    const String_t room(10u);
    EXPECT_EQ(room, "");
    EXPECT_LT(String_t("abc").Compare("abd"), 0);
}

TEST(StringTest, ChangesDetachFromSharedCopies)
{
    String_t s("base");
    String_t t = s;
    EXPECT_EQ(s.Chars(), t.Chars());
    t += "x";
    EXPECT_EQ(s, "base");
    EXPECT_EQ(t, "basex");
    t = s;
    t.Prepend(">");
    EXPECT_EQ(s, "base");
    EXPECT_EQ(t, ">base");
    t = s;
    t = "other";
    EXPECT_EQ(s, "base");

    s += static_cast<const char*>(nullptr);
    EXPECT_EQ(s, "base");
    const String_t& same = s;
    s = same;
    EXPECT_EQ(s, "base");
    s += s; // the source is one of our own texts
    EXPECT_EQ(s, "basebase");
    s.Prepend(s.Chars());
    EXPECT_EQ(s, "basebasebasebase");
    s = static_cast<const char*>(nullptr);
    EXPECT_TRUE(s.IsNull());
    s += "";
    EXPECT_EQ(s, ""); // "" appended to null data is a non-null empty text

    EXPECT_EQ(String_t("a") + "b" + String_t("c"), "abc");
    EXPECT_TRUE((String_t() + static_cast<const char*>(nullptr)).IsNull());
}

TEST(StringTest, ReserveWritesThroughSharedRepresentation)
{
    String_t s("shared");
    String_t t = s;
    char* buf = s.Reserve(10);
    EXPECT_EQ(s, "");
    EXPECT_EQ(t, ""); // deliberately: every copy loses the text
    std::strcpy(buf, "0123456789");
    EXPECT_EQ(t, "0123456789");

    char* saved = t.Save();
    EXPECT_STREQ(saved, "0123456789");
    EXPECT_NE(saved, t.Chars());
    delete[] saved;
    EXPECT_EQ(String_t().Save(), nullptr);
}

TEST(StringTest, FailedAllocationLeavesStringAsItWas)
{
    // A 4 GiB text cannot exist; the 32-bit length sum overflows and nothing changes.
    String_t s("keep");
    String_t t = s;
    EXPECT_THROW(s.Reserve(0xFFFFFFFFu), std::bad_alloc);
    EXPECT_EQ(t, "keep");
}

TEST(StringTest, SubStrAndTrims)
{
    const String_t hello("hello");
    EXPECT_EQ(hello.SubStr(1, 3), "ell");
    EXPECT_EQ(hello.SubStr(3, 100), "lo");
    EXPECT_TRUE(hello.SubStr(2, 1).IsNull());
    EXPECT_TRUE(hello.SubStr(5, 9).IsNull());
    EXPECT_TRUE(String_t().SubStr(0, 3).IsNull());

    struct Row {
        const char* in;
        const char* trim;
        const char* left;
        const char* right;
    } rows[] = {
        // null stands for null data
        {"  a b  ", "a b", "a b  ", "  a b"},
        {"   ", nullptr, " ", nullptr},
        {" ", nullptr, " ", nullptr},
        {"", nullptr, nullptr, nullptr},
        {"  x", "x", "x", "  x"},
        {"x  ", "x", "x  ", "x"},
        {"\t\nx\r", "x", "x\r", "\t\nx"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.in);
        const String_t s(r.in);
        EXPECT_TRUE(s.Trim() == r.trim);
        EXPECT_TRUE(s.TrimLeft() == r.left);
        EXPECT_TRUE(s.TrimRight() == r.right);
    }
    EXPECT_TRUE(String_t().Trim().IsNull());
    EXPECT_TRUE(String_t().TrimLeft().IsNull());
}

TEST(StringTest, CaseAndSubstitution)
{
    const String_t s("Hello, World 1\xe9");
    EXPECT_EQ(s.Toupper(), "HELLO, WORLD 1\xe9");
    EXPECT_EQ(s.Tolower(), "hello, world 1\xe9");
    EXPECT_EQ(s.Subst('o', '0'), "Hell0, W0rld 1\xe9");
    EXPECT_EQ(s.Subst(", ", '_'), "Hello__World_1\xe9");
    EXPECT_EQ(s.Subst(static_cast<const char*>(nullptr), '_'), s);
    EXPECT_EQ(s, "Hello, World 1\xe9"); // derived strings leave the source alone
    EXPECT_TRUE(String_t().Toupper().IsNull());
    EXPECT_TRUE(String_t().Subst('a', 'b').IsNull());
    EXPECT_FALSE(String_t("").Tolower().IsNull());
}

TEST(StringTest, WordInput)
{
    std::istringstream in("  abc");
    String_t w("old");
    in >> w;
    EXPECT_EQ(w, "abc");
    EXPECT_TRUE(in.good()); // the word ended the stream, yet the stream is cleared
    in >> w;
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(w, "abc");

    std::istringstream two(" one\ttwo\n");
    String_t a, b, c("kept");
    two >> a >> b >> c;
    EXPECT_EQ(a, "one");
    EXPECT_EQ(b, "two");
    EXPECT_EQ(c, "kept");
    EXPECT_TRUE(two.fail());

    std::ostringstream out;
    out.width(5);
    out.fill('.');
    out << String_t("ab") << '|' << String_t() << '|';
    EXPECT_EQ(out.str(), "...ab||");
}

TEST(StringTest, GetlineWithDelimiterStrings)
{
    std::istringstream in("one\r\ntwo");
    String_t line;
    EXPECT_TRUE(String_t::Getline(in, line, "\r\n"));
    EXPECT_EQ(line, "one");
    EXPECT_TRUE(String_t::Getline(in, line, "\r\n"));
    EXPECT_EQ(line, "two");
    EXPECT_FALSE(String_t::Getline(in, line, "\r\n"));
    EXPECT_TRUE(line.IsNull());

    std::istringstream empty_line("\nx\n");
    EXPECT_TRUE(String_t::Getline(empty_line, line, "\n"));
    EXPECT_EQ(line, ""); // an empty line is told apart from no line
    EXPECT_FALSE(line.IsNull());

    std::istringstream partial("a\rb\r\r\n");
    String_t::Getline(partial, line, "\r\n");
    EXPECT_EQ(line, "a\rb\r");

    std::istringstream all("x\ny");
    String_t::Getline(all, line, nullptr);
    EXPECT_EQ(line, "x\ny");
    EXPECT_TRUE(all.good());
}

TEST(StrCntTest, SharesTheStringAndStartsAtZero)
{
    const String_t word("w");
    StrCnt c(word);
    EXPECT_EQ(c.count, 0);
    EXPECT_EQ(c.str.Chars(), word.Chars());
    StrCnt d;
    EXPECT_TRUE(d.str.IsNull());
    c.count = 3;
    d = c;
    EXPECT_EQ(d.count, 3);
    EXPECT_EQ(d.str, "w");
}
