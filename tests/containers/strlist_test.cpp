// TOList<String_t> against a model, its iterator, Split, Concat, the comparators and the tokenizers.
#include <tevbase/strlist.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <deque>
#include <random>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

Strings contents(const TOList<String_t>& list)
{
    Strings out;
    for (TOListIterator<String_t> it(list); const String_t* s = it();)
        out.push_back(s->Text());
    return out;
}

TOList<String_t> list_of(const Strings& items)
{
    TOList<String_t> list;
    for (const std::string& s : items)
        list.Append(String_t(s.c_str()));
    return list;
}

// The ring closes at the last link after exactly n links.
void expect_ring(const TOList<String_t>& list, std::size_t n)
{
    ASSERT_EQ(list.Last() == nullptr, n == 0);
    const olink_t* p = list.last;
    for (std::size_t i = 0; i < n; ++i) {
        p = p->next;
        ASSERT_EQ(p == list.last, i + 1 == n) << "at " << i;
    }
    ASSERT_EQ(list.Len(), static_cast<int>(n));
}

std::string upper(std::string s)
{
    for (char& c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

Strings splitter_fields(const char* s, const char* seps, const char* trim)
{
    Strings out;
    for (StringSplitter f(s, seps, trim); f.Valid(); f.Next())
        out.push_back(f.Field());
    return out;
}

} // namespace

TEST(TOListTest, RandomOperationsMatchModel)
{
    // Case-insensitive comparison makes "a" and "A" equal yet distinguishable: sort stability and
    // which member of a run Uniq keeps are visible.
    const char* const words[] = {"a", "A", "b", "B", "", "c"};
    std::mt19937 rng(17);
    TOList<String_t> list;
    std::deque<std::string> model;
    auto same = [](const std::string& x, const std::string& y) { return upper(x) == upper(y); };
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE(step);
        const std::string w = words[rng() % 6];
        const String_t key(w.c_str());
        const auto found = std::find_if(model.begin(), model.end(), [&](const std::string& m) { return same(m, w); });
        const bool hit = found != model.end(), at_end = rng() % 2;
        auto add = [&] { at_end ? model.push_back(w) : model.push_front(w); };
        switch (rng() % 10) {
        case 0:
            EXPECT_EQ(*(at_end ? list.Append(key) : list.Insert(key)), key);
            add();
            break;
        case 1:
            if (!model.empty()) {
                EXPECT_EQ(at_end ? list.Get() : list.Pop(), (at_end ? model.back() : model.front()).c_str());
                at_end ? model.pop_back() : model.pop_front();
            }
            break;
        case 2: {
            const String_t* got = at_end ? list.FindOrAppend(key, StrListCaseCmp) : list.FindOrInsert(key, StrListCaseCmp);
            EXPECT_EQ(*got, hit ? found->c_str() : w.c_str());
            if (!hit)
                add();
            break;
        }
        case 3: {
            const String_t* got =
                at_end ? list.ReplaceOrAppend(key, StrListCaseCmp) : list.ReplaceOrInsert(key, StrListCaseCmp);
            EXPECT_EQ(*got, key);
            hit ? void(*found = w) : add();
            break;
        }
        case 4:
            EXPECT_EQ(list.Remove(StrListCaseCmp, &key), hit ? 1 : 0);
            if (hit)
                model.erase(found);
            break;
        case 5:
            list.RemoveLoop(StrListCaseCmp, &key);
            model.erase(std::remove_if(model.begin(), model.end(), [&](const std::string& m) { return same(m, w); }),
                        model.end());
            break;
        case 6:
            list.Sort(StrListCaseCmp);
            std::stable_sort(model.begin(), model.end(),
                             [](const std::string& x, const std::string& y) { return upper(x) < upper(y); });
            break;
        case 7:
            list.Uniq(StrListCaseCmp);
            model.erase(std::unique(model.begin(), model.end(), same), model.end());
            break;
        case 8: { // into itself, or into another list (this one unchanged) that is then assigned back
            TOList<String_t> out = list_of({"stale"});
            TOList<String_t>& target = at_end ? list : out;
            EXPECT_EQ(&list.Reverse(target), &target);
            if (!at_end) {
                EXPECT_EQ(contents(list), Strings(model.begin(), model.end()));
            }
            std::reverse(model.begin(), model.end());
            list = target;
            break;
        }
        default: {
            const int i = static_cast<int>(rng() % (model.size() + 2)) - 1;
            const String_t* at = list[i];
            const String_t* got = list.Find(StrListCaseCmp, &key);
            EXPECT_EQ(at != nullptr ? at->Text() : "-", i >= 0 && i < static_cast<int>(model.size()) ? model[i] : "-");
            EXPECT_EQ(got != nullptr ? got->Text() : "-", hit ? *found : "-");
            break;
        }
        }
        ASSERT_NO_FATAL_FAILURE(expect_ring(list, model.size()));
        ASSERT_EQ(contents(list), Strings(model.begin(), model.end()));
        if (model.size() > 40)
            list.Clear(), model.clear();
    }
}

TEST(TOListTest, UniqLoopAndRemoveLoop)
{
    // With a comparison that is not transitive the predecessor counts, not the last element kept.
    TOList<String_t> steps = list_of({"a", "b", "c", "d", "f"});
    steps.Uniq([](const TOLink<String_t>* l, const String_t* prev) {
        return std::abs(l->contents.Text()[0] - prev->Text()[0]) <= 1 ? 0 : 1;
    });
    EXPECT_EQ(contents(steps), (Strings{"a", "f"}));

    TOList<String_t> runs = list_of({"x", "y", "x"});
    struct IsX : olist_cmpo_t {
        int operator()(const olink_t* l) const override
        {
            return static_cast<const TOLink<String_t>*>(l)->contents == "x" ? 0 : 1;
        }
    } is_x;
    runs.RemoveLoop(is_x);
    EXPECT_EQ(contents(runs), (Strings{"y"}));
    // Loop may hand out links that remove themselves.
    runs.Append("z");
    runs.Loop(+[](TOLink<String_t>* link, TOList<String_t>* list) {
        list->Remove(+[](const TOLink<String_t>* l, const TOLink<String_t>* me) { return l == me ? 0 : 1; }, link);
    }, &runs);
    EXPECT_EQ(runs.First(), nullptr);
}

TEST(TOListTest, IteratorEnds)
{
    TOList<String_t> list = list_of({"a", "b"});
    TOListIterator<String_t> call(list), step(list);
    list.Append("c");
    // operator() stops at the last link as it was when bound; operator++ goes on until the ring wraps.
    Strings by_call, by_step;
    while (String_t* s = call())
        by_call.push_back(s->Text());
    for (; step; ++step)
        by_step.push_back(step->Text());
    EXPECT_EQ(by_call, (Strings{"a", "b"}));
    EXPECT_EQ(by_step, (Strings{"a", "b", "c"}));
    call.Reset();
    by_call.clear();
    while (String_t* s = call())
        by_call.push_back(s->Text());
    EXPECT_EQ(by_call, (Strings{"a", "b", "c"}));

    TOList<String_t> empty;
    TOListIterator<String_t> none(empty);
    EXPECT_EQ(none(), nullptr);
    EXPECT_FALSE(none);
}

TEST(TOListDeathTest, PopAndGetOnEmptyList)
{
    TOList<String_t> list;
    const std::string file = "include/generic/tolist";
    EXPECT_DEATH(list.Pop(), testutil::AssertionPattern(file, "T TOList<T>::Pop() [with T = String_t]", "p != 0"));
    EXPECT_DEATH(list.Get(), testutil::AssertionPattern(file, "T TOList<T>::Get() [with T = String_t]", "p != 0"));
}

TEST(StrListTest, SplitConcatAndComparators)
{
    struct Row {
        const char* s;
        const char* seps;
        Strings fields;
    };
    const Row rows[] = {
        {"a:b:c", ":", {"a", "b", "c"}}, {"", ":", {""}}, {"a,,b", ",", {"a", "", "b"}},
        {"a,", ",", {"a", ""}},          {",a", ",", {"", "a"}}, {"a b\tc", " \t", {"a", "b", "c"}},
        {"abc", nullptr, {"abc"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.s);
        TOList<String_t> list = list_of({"kept"});
        EXPECT_EQ(Split(row.s, list, row.seps), static_cast<int>(row.fields.size()));
        Strings expected{"kept"};
        expected.insert(expected.end(), row.fields.begin(), row.fields.end());
        EXPECT_EQ(contents(list), expected);
        for (TOListIterator<String_t> it(list); String_t* s = it();)
            EXPECT_FALSE(s->IsNull());
        // Concat puts the fields back together.
        if (row.seps != nullptr && row.seps[1] == '\0') {
            list.Pop();
            EXPECT_EQ(Concat(list, row.seps[0]), row.s);
        }
    }
    TOList<String_t> list;
    EXPECT_EQ(Split(nullptr, list, ","), 0);
    EXPECT_EQ(list.Len(), 0);
    EXPECT_FALSE(Concat(list, '/').IsNull());
    EXPECT_EQ(Concat(String_t("a"), String_t("b"), ", "), "a, b");
    EXPECT_FALSE(Concat(String_t(), String_t(), nullptr).IsNull());

    const TOLink<String_t> abc{String_t("abc")}, none{String_t()};
    const String_t abd("ABD"), empty("");
    EXPECT_GT(StrListCmp(&abc, &abd), 0);
    EXPECT_EQ(StrListCaseCmp(&abc, &abd), 'C' - 'D');
    EXPECT_LT(StrListCmp(&none, &empty), 0); // null data orders before ""
    EXPECT_LT(StrListCaseCmp(&none, &empty), 0);
}

TEST(StringTokTest, Tokens)
{
    struct Row {
        const char* s;
        std::vector<const char*> seps; // one call each
        std::vector<const char*> tokens;
        std::vector<char> separators;
    };
    const Row rows[] = {
        {"  a  b ", {" ", " ", " "}, {"a", "b", nullptr}, {' ', ' ', ' '}}, // runs collapse
        {"a,b", {",", ",", ","}, {"a", "b", nullptr}, {',', 0, 0}},
        {"a,b c", {",", " ", " "}, {"a", "b", "c"}, {',', ' ', 0}}, // separators change
        {",,,", {",", ","}, {nullptr, nullptr}, {0, 0}},
        {"", {","}, {nullptr}, {0}},
        {nullptr, {","}, {nullptr}, {0}},
        {"a b", {nullptr, nullptr}, {"a b", nullptr}, {0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.s != nullptr ? row.s : "(null)");
        StringTok tok(row.s);
        for (std::size_t i = 0; i < row.seps.size(); ++i) {
            const char* t = tok(row.seps[i]);
            EXPECT_STREQ(t, row.tokens[i]) << i;
            EXPECT_EQ(tok.Separator(), row.separators[i]) << i;
        }
    }

    // A copy goes on from where the original stands and cuts its own text.
    StringTok tok("one two three");
    EXPECT_STREQ(tok(" "), "one");
    StringTok copy(tok);
    EXPECT_STREQ(tok(" "), "two");
    EXPECT_STREQ(copy(" "), "two");
    tok = "x y";
    EXPECT_STREQ(tok(" "), "x");
    copy = tok;
    EXPECT_STREQ(copy(" "), "y");
}

TEST(StringSplitterTest, Fields)
{
    struct Row {
        const char* s;
        const char* seps;
        const char* trim;
        Strings fields;
    };
    const Row rows[] = {
        {"a,,b", ",", "", {"a", "", "b"}},   // separators never collapse
        {"a,b,", ",", "", {"a", "b"}},       // a trailing separator makes no field
        {"", ",", "", {}}, {nullptr, ",", "", {}}, {",", ",", "", {""}},
        {" x , y ", ",", " ", {"x", "y"}},   // trimmed; inner blanks stay
        {" a b ,c", ",", " ", {"a b", "c"}},
        {"a, ,b", ",", " ", {"a", "", "b"}}, // a blank field trims to empty
        {" , y", ",", " ", {"", "y"}},
        {"a,  ", ",", " ", {"a"}},           // trim set up to the end: no field
        {"-+a+-:b", ":", "+-", {"a", "b"}}, {"a,b", nullptr, nullptr, {"a,b"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.s != nullptr ? row.s : "(null)");
        EXPECT_EQ(splitter_fields(row.s, row.seps, row.trim), row.fields);
    }

    StringSplitter f("a,b,c", ",", "");
    StringSplitter copy(f);
    f.Next();
    EXPECT_STREQ(f.Field(), "b");
    EXPECT_STREQ(copy.Field(), "a");
    copy = f;
    copy.Next();
    EXPECT_STREQ(copy.Field(), "c");
    copy.Next();
    copy.Next(); // stays at the end
    EXPECT_EQ(copy.Field(), nullptr);
    f.Bind(" p , q ");
    EXPECT_STREQ(f.Field(), " p ");
    f.Bind(f.Field()); // from its own text
    EXPECT_STREQ(f.Field(), " p ");
}

// Without a trim set, StringSplitter gives Split's fields but for a last empty one; StringTok gives the
// non-empty ones.
TEST(StringSplitterTest, AgreesWithSplit)
{
    std::mt19937 rng(23);
    for (int i = 0; i < 2000; ++i) {
        std::string s(rng() % 9, ' ');
        for (char& c : s)
            c = "ab,;"[rng() % 4];
        SCOPED_TRACE(s);
        TOList<String_t> list;
        Split(s.c_str(), list, ",;");
        Strings fields = contents(list);
        Strings tokens;
        std::copy_if(fields.begin(), fields.end(), std::back_inserter(tokens), [](const std::string& f) { return !f.empty(); });
        if (fields.back().empty())
            fields.pop_back();
        EXPECT_EQ(splitter_fields(s.c_str(), ",;", ""), fields);

        StringTok tok(s.c_str());
        Strings got;
        while (const char* t = tok(",;"))
            got.push_back(t);
        EXPECT_EQ(got, tokens);
    }
}
