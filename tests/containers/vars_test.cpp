// Vars: definitions from strings and argument vectors, and expansion with and without keep.
#include <tevbase/vars.h>

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Expand(const Vars& v, const char* text, int keep)
{
    TVarr<char> out(1024, VARR_INCR);
    return v.Substitute(out, text, keep);
}

TEST(VarsTest, SubstituteExpandsReferences)
{
    Vars v;
    v.Add("a", "1");
    v.Add("bc", "2");
    v.Add("empty", "");
    const struct {
        const char* text;
        const char* keep0;
        const char* keep1;
    } rows[] = {
        {"x$a-y", "x1-y", "x1-y"},
        {"${bc}z", "2z", "2z"},
        {"$bcz", "", "$bcz"},
        {"${q}", "", "${q}"},
        {"${q", "", "${q}"}, // an unterminated brace takes the rest as the name
        {"$", "$", "$"},
        {"$ a", "$ a", "$ a"},
        {"${}x", "$x", "$x"},
        {"$a}b", "1b", "1b"},
        {"$q}b", "b", "$qb"},
        {"$$a", "$1", "$1"},
        {"$a$bc$a", "121", "121"},
        {"[$empty]", "[]", "[]"},
        {"$a_", "", "$a_"},
        {"no marker", "no marker", "no marker"},
        {"", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Expand(v, row.text, 0), row.keep0) << row.text;
        EXPECT_EQ(Expand(v, row.text, 1), row.keep1) << row.text;
    }
    EXPECT_EQ(Expand(v, nullptr, 1), "");

    Vars pct('%');
    pct.Add("a", "$");
    EXPECT_EQ(Expand(pct, "%a%{a}$a", 0), "$$$a");
    TVarr<char> out(1024, VARR_DOUBLE);
    pct.Substitute(out, "a long text first", 0);
    EXPECT_STREQ(pct.Substitute(out, "%a", 0), "$"); // out is reset
}

TEST(VarsTest, DefinitionStringsNumberEveryWord)
{
    Vars v;
    v.Add("a:x=1:b");
    EXPECT_EQ(Expand(v, "$1,$x,$3,${2}", 1), "a,1,b,${2}");

    Vars w;
    w.Add("p:q=$1:r");
    EXPECT_EQ(Expand(w, "$1 $q $3", 1), "p p r");

    Vars b;
    b.Add("::  one:: name  =  val ::$none:two$1");
    EXPECT_EQ(Expand(b, "$1|${name  }|$3|$4", 1), "one|val ||twoone"); // 3: "$none" expanded to ""
    EXPECT_EQ(Expand(b, "$2", 1), "$2");                               // the second word was named
    b.Add("name  ", "again"); // a definition replaces the value
    EXPECT_EQ(Expand(b, "${name  }", 0), "again");
    b.Add(1, "uno");
    EXPECT_EQ(Expand(b, "$1", 0), "uno");
    b.Add(static_cast<const char*>(nullptr));
    b.Add(static_cast<const char**>(nullptr));
}

TEST(VarsTest, ArgumentVectorsAreTakenLiterally)
{
    Vars v;
    v.Add("x", "X");
    const char* argv[] = {"  first", "k = $x", "a:b", "e=", nullptr};
    v.Add(argv);
    EXPECT_EQ(Expand(v, "[$1][${k }][$3][$e]", 1), "[first][$x][a:b][]");
    EXPECT_EQ(Expand(v, "$2", 1), "$2");
}

} // namespace
