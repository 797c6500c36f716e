// TOList<String_t> against a model, its iterator; Split, Concat and the tokenizers against a reference;
// the comparators.
#include <tevbase/strlist.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <strings.h>

#include <algorithm>
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

// Fields of s cut at every ',' and ';', as Split promises them.
Strings reference_fields(const std::string& s)
{
    Strings out(1);
    for (char c : s) {
        if (c == ',' || c == ';')
            out.emplace_back();
        else
            out.back() += c;
    }
    return out;
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
    auto same = [](const std::string& x, const std::string& y) { return strcasecmp(x.c_str(), y.c_str()) == 0; };
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
                             [](const std::string& x, const std::string& y) { return strcasecmp(x.c_str(), y.c_str()) < 0; });
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
        ASSERT_EQ(contents(list), Strings(model.begin(), model.end())); // from the first to the last link
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));           // around the ring back to the last
        ASSERT_EQ(list.Last() == nullptr, model.empty());
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
    // operator() stops at the last link as it was at binding or Reset; operator++ goes on until the
    // ring wraps.
    TOList<String_t> list = list_of({"a", "b"});
    TOListIterator<String_t> call(list), step(list);
    list.Append("c");
    auto called = [&call] {
        Strings out;
        while (String_t* s = call())
            out.push_back(s->Text());
        return out;
    };
    EXPECT_EQ(called(), (Strings{"a", "b"}));
    Strings stepped;
    for (; step; ++step)
        stepped.push_back(step->Text());
    EXPECT_EQ(stepped, (Strings{"a", "b", "c"}));
    call.Reset();
    EXPECT_EQ(called(), (Strings{"a", "b", "c"}));

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

// Split against the reference fields, Concat putting them back together; StringTok gives the non-empty
// fields and StringSplitter all but an empty last one.
TEST(StrListTest, SplitAndTokenizersAgreeWithAReference)
{
    std::mt19937 rng(23);
    for (int i = 0; i < 2000; ++i) {
        std::string s(rng() % 9, ' ');
        for (char& c : s)
            c = "ab,;"[rng() % 4];
        SCOPED_TRACE(s);
        Strings fields = reference_fields(s);
        TOList<String_t> list = list_of({"kept"});
        EXPECT_EQ(Split(s.c_str(), list, ",;"), static_cast<int>(fields.size()));
        EXPECT_EQ(list.Pop(), "kept");
        EXPECT_EQ(contents(list), fields);
        EXPECT_FALSE(list.First()->contents.IsNull());
        std::string joined = s;
        std::replace(joined.begin(), joined.end(), ';', ',');
        EXPECT_EQ(Concat(list, ','), joined.c_str());

        Strings tokens;
        std::copy_if(fields.begin(), fields.end(), std::back_inserter(tokens), [](const std::string& f) { return !f.empty(); });
        StringTok tok(s.c_str());
        Strings got;
        while (const char* t = tok(",;"))
            got.push_back(t);
        EXPECT_EQ(got, tokens);
        if (fields.back().empty())
            fields.pop_back();
        EXPECT_EQ(splitter_fields(s.c_str(), ",;", ""), fields);
    }
    TOList<String_t> list;
    EXPECT_EQ(Split(nullptr, list, ","), 0);
    EXPECT_EQ(Split("a b", list, nullptr), 1); // no separators: one field
    EXPECT_FALSE(Concat(TOList<String_t>(), '/').IsNull());
    EXPECT_EQ(Concat(String_t("a"), String_t("b"), ", "), "a, b");
    EXPECT_FALSE(Concat(String_t(), String_t(), nullptr).IsNull());
}

TEST(StrListTest, Comparators)
{
    const TOLink<String_t> abc{String_t("abc")}, none{String_t()};
    const String_t abd("ABD"), empty("");
    EXPECT_GT(StrListCmp(&abc, &abd), 0);
    EXPECT_EQ(StrListCaseCmp(&abc, &abd), 'C' - 'D');
    EXPECT_LT(StrListCmp(&none, &empty), 0); // null data orders before ""
    EXPECT_LT(StrListCaseCmp(&none, &empty), 0);
}

TEST(StringTokTest, SeparatorsAndCopies)
{
    struct Row {
        const char* s;
        std::vector<const char*> seps; // one call each
        std::vector<const char*> tokens;
        std::vector<char> separators;
    };
    const Row rows[] = {
        {"  a  b ", {" ", " ", " "}, {"a", "b", nullptr}, {' ', ' ', ' '}},
        {"a,b c", {",", " ", " "}, {"a", "b", "c"}, {',', ' ', 0}}, // separators change from call to call
        {nullptr, {","}, {nullptr}, {0}},
        {"a b", {nullptr, nullptr}, {"a b", nullptr}, {0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.s != nullptr ? row.s : "(null)");
        StringTok tok(row.s);
        for (std::size_t i = 0; i < row.seps.size(); ++i) {
            EXPECT_STREQ(tok(row.seps[i]), row.tokens[i]) << i;
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

TEST(StringSplitterTest, TrimmedFieldsAndCopies)
{
    struct Row {
        const char* s;
        const char* seps;
        const char* trim;
        Strings fields;
    };
    const Row rows[] = {
        {nullptr, ",", "", {}},
        {"a,b", nullptr, nullptr, {"a,b"}},
        {" x , y ", ",", " ", {"x", "y"}},   // trimmed; inner blanks stay
        {" a b ,c", ",", " ", {"a b", "c"}},
        {"a, ,b", ",", " ", {"a", "", "b"}}, // a blank field trims to empty
        {" , y", ",", " ", {"", "y"}},
        {"a,  ", ",", " ", {"a"}},           // trim set up to the end: no field
        {"-+a+-:b", ":", "+-", {"a", "b"}},
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
