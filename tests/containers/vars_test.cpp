// Vars: definitions from strings and argument vectors, and expansion with and without keep.
#include <tevbase/vars.h>

#include <gtest/gtest.h>

#include <string>

namespace {

// One buffer for every expansion: Substitute resets it.
std::string Expand(const Vars& v, const char* text, int keep)
{
    static TVarr<char> out(1024, VARR_INCR);
    return v.Substitute(out, text, keep);
}

TEST(VarsTest, SubstituteAndDefinitions)
{
    Vars v;
    v.Add("a=1:bc=2:empty=");
    const char* const rows[][3] = { // text, keep 0, keep 1
        {"x$a-y", "x1-y", "x1-y"}, {"${bc}z", "2z", "2z"},  {"$bcz", "", "$bcz"}, {"$a_", "", "$a_"},
        {"${q}", "", "${q}"},      {"${q", "", "${q}"},    {"$", "$", "$"},      {"$ a", "$ a", "$ a"},
        {"${}x", "$x", "$x"},      {"$a}b", "1b", "1b"},   {"$q}b", "b", "$qb"}, {"$$a", "$1", "$1"},
        {"[$empty]", "[]", "[]"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Expand(v, row[0], 0), row[1]) << row[0];
        EXPECT_EQ(Expand(v, row[0], 1), row[2]) << row[0];
    }
    EXPECT_EQ(Expand(v, nullptr, 1), "");
    Vars pct('%'); // values are not scanned again
    pct.Add("a", "%a");
    EXPECT_EQ(Expand(pct, "%a%{a}$a", 0), "%a%a$a");
    // Definitions number every word: 1 = "one", "name  " = "one", 3 = "" ($none expanded), 4 = "twoone".
    Vars d;
    d.Add("::  one:: name  =  $1 ::$none:two$1");
    EXPECT_EQ(Expand(d, "$1|${name  }|$3|$4|$2", 1), "one|one ||twoone|$2");
    d.Add("name  ", "again"); // a definition replaces the value
    d.Add(1, "uno");
    EXPECT_EQ(Expand(d, "${name  }$1", 0), "againuno");
    const char* argv[] = {"  first", "k = $x", "a:b", "e=", nullptr}; // taken literally, colons included
    pct.Add(argv);
    pct.Add(static_cast<const char**>(nullptr));
    EXPECT_EQ(Expand(pct, "[%1][%{k }][%3][%e]%2", 1), "[first][$x][a:b][]%2");
}

} // namespace
