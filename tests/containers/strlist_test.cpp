// TOList<String_t> against a model, its iterator; Split, Concat and the tokenizers against a reference;
// the comparators.
#include <tevbase/strlist.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <strings.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Strings = std::vector<std::string>;
using List = TOList<String_t>;

Strings Contents(const List& list)
{
    Strings out;
    for (TOListIterator<String_t> it(list); const String_t* s = it();)
        out.push_back(s->Text());
    return out;
}

List ListOf(const Strings& items)
{
    List list;
    for (const std::string& s : items)
        list.Append(s.c_str());
    return list;
}

Strings Fields(const char* s, const char* seps, const char* trim)
{
    Strings out;
    for (StringSplitter f(s, seps, trim); f.Valid(); f.Next())
        out.push_back(f.Field());
    return out;
}

int Icmp(const std::string& x, const std::string& y) { return strcasecmp(x.c_str(), y.c_str()); }

// 0 for neighbours: first letters at most one apart, case aside; "" only with "". Not transitive.
int Far(const char* x, const char* y) { return *x && *y ? abs(tolower(*x) - tolower(*y)) > 1 : *x != *y; }
int Far(const TOLink<String_t>* l, const String_t* p) { return Far(l->contents.Text(), p->Text()); }

} // namespace

// Case-insensitive comparison makes "a" and "A" equal yet distinguishable: sort stability and which
// member of a run Uniq keeps are visible. Uniq runs with Far, under which a run "a", "b", "c" is one run:
// each element is compared with its predecessor as the list stood.
TEST(TOListTest, RandomOperationsMatchModel)
{
    const char* const words[] = {"a", "A", "b", "B", "", "c"};
    const auto cmp = StrListCaseCmp;
    std::mt19937 rng(17);
    List list;
    std::deque<std::string> model;
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE(step);
        const std::string w = words[rng() % 6];
        const String_t key(w.c_str());
        auto same = [&w](const std::string& m) { return Icmp(m, w) == 0; };
        const auto found = std::find_if(model.begin(), model.end(), same);
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
        case 2:
            EXPECT_EQ(*(at_end ? list.FindOrAppend(key, cmp) : list.FindOrInsert(key, cmp)),
                      (hit ? *found : w).c_str());
            hit ? void() : add();
            break;
        case 3:
            EXPECT_EQ(*(at_end ? list.ReplaceOrAppend(key, cmp) : list.ReplaceOrInsert(key, cmp)), key);
            hit ? void(*found = w) : add();
            break;
        case 4:
            EXPECT_EQ(list.Remove(cmp, &key), hit ? 1 : 0);
            hit ? void(model.erase(found)) : void();
            break;
        case 5:
            list.RemoveLoop(cmp, &key);
            model.erase(std::remove_if(model.begin(), model.end(), same), model.end());
            break;
        case 6:
            list.Sort(cmp);
            std::stable_sort(model.begin(), model.end(), [](auto& x, auto& y) { return Icmp(x, y) < 0; });
            break;
        case 7:
            list.Uniq(Far);
            for (std::size_t i = model.size(); i-- > 1;)
                if (!Far(model[i].c_str(), model[i - 1].c_str()))
                    model.erase(model.begin() + static_cast<long>(i));
            break;
        case 8: { // into itself, or into another list (this one unchanged) that is then assigned back
            List out = ListOf({"stale"}), &target = at_end ? list : out;
            EXPECT_EQ(&list.Reverse(target), &target);
            EXPECT_TRUE(at_end || Contents(list) == Strings(model.begin(), model.end()));
            std::reverse(model.begin(), model.end());
            list = target;
            break;
        }
        default:
            const int i = static_cast<int>(rng() % (model.size() + 2)) - 1;
            const String_t *at = list[i], *got = list.Find(cmp, &key);
            EXPECT_EQ(at ? at->Text() : "-", i >= 0 && i < int(model.size()) ? model[i] : "-");
            EXPECT_EQ(got ? got->Text() : "-", hit ? *found : "-");
        }
        ASSERT_EQ(Contents(list), Strings(model.begin(), model.end())); // from the first to the last link
        ASSERT_EQ(list.Len(), static_cast<int>(model.size()));           // around the ring back to the last
        ASSERT_EQ(list.Last() == nullptr, model.empty());
        if (model.size() > 40)
            list.Clear(), model.clear();
    }
}

// operator() stops at the last link as it was at binding or Reset; operator++ goes on until the ring
// wraps.
TEST(TOListTest, IteratorEnds)
{
    List list = ListOf({"a", "b"});
    TOListIterator<String_t> call(list), step(list);
    list.Append("c");
    int called = 0, stepped = 0;
    while (call())
        ++called;
    for (; step; ++step)
        ++stepped;
    call.Reset();
    EXPECT_TRUE(called == 2 && stepped == 3 && call() && call() && call() && !call());
}

TEST(TOListDeathTest, PopAndGetOnEmptyList)
{
    List list;
    auto report = [](const char* function) {
        return testutil::AssertionPattern("include/generic/tolist", function, "p != 0");
    };
    EXPECT_DEATH(list.Pop(), report("T TOList<T>::Pop() [with T = String_t]"));
    EXPECT_DEATH(list.Get(), report("T TOList<T>::Get() [with T = String_t]"));
}

// Split cuts at every separator and Concat puts the fields back together; StringTok gives the non-empty
// fields. StringSplitter gives a field at the start and after each separator unless only trim
// characters remain, trimmed at both ends without looking back past the field's own start.
TEST(StrListTest, SplitAndTokenizersAgreeWithAReference)
{
    std::mt19937 rng(23);
    for (int i = 0; i < 3000; ++i) {
        std::string s(rng() % 9, ' ');
        for (char& c : s)
            c = "ab +,;"[rng() % 6];
        SCOPED_TRACE("\"" + s + "\"");
        Strings fields(1), tokens, got;
        for (char c : s)
            c == ',' || c == ';' ? void(fields.emplace_back()) : void(fields.back() += c);
        for (const char* trim : {"", " +"}) {
            Strings want;
            for (std::size_t at = 0, end; (at = s.find_first_not_of(trim, at)) < s.size(); at = end + 1) {
                end = std::min(s.find_first_of(",;", at), s.size());
                want.push_back(end == at ? "" : s.substr(at, s.find_last_not_of(trim, end - 1) + 1 - at));
            }
            EXPECT_EQ(Fields(s.c_str(), ",;", trim), want) << "trim \"" << trim << "\"";
        }
        List list = ListOf({"kept"});
        EXPECT_EQ(Split(s.c_str(), list, ",;"), static_cast<int>(fields.size()));
        EXPECT_EQ(list.Pop(), "kept");
        EXPECT_EQ(Contents(list), fields);
        EXPECT_FALSE(list.First()->contents.IsNull());
        std::remove_copy(fields.begin(), fields.end(), std::back_inserter(tokens), "");
        StringTok tok(s.c_str());
        while (const char* t = tok(",;"))
            got.push_back(t);
        EXPECT_EQ(got, tokens);
        std::replace(s.begin(), s.end(), ';', ',');
        EXPECT_EQ(Concat(list, ','), s.c_str());
    }
    List list;
    EXPECT_EQ(Split(nullptr, list, ","), 0);
    EXPECT_EQ(Split("a b", list, nullptr), 1); // no separators: one field
    EXPECT_FALSE(Concat(List(), '/').IsNull());
    EXPECT_EQ(Concat(String_t("a"), String_t("b"), ", "), "a, b");
    const TOLink<String_t> abc{String_t("abc")}, none{String_t()};
    const String_t abd("ABD"), blank("");
    EXPECT_TRUE(StrListCmp(&abc, &abd) > 0 && StrListCaseCmp(&abc, &abd) == 'C' - 'D');
    EXPECT_TRUE(StrListCmp(&none, &blank) < 0 && StrListCaseCmp(&none, &blank) < 0); // null before ""
}

TEST(TokenizerTest, SeparatorsNullsCopiesAndRebinding)
{
    using Calls = std::vector<const char*>; // one call each: separators, tokens
    const std::tuple<const char*, Calls, Calls, std::string> rows[] = { // text, ..., separators found
        {"a,b c", {",", " ", " "}, {"a", "b", "c"}, {',', ' ', 0}}, // separators change from call to call
        {nullptr, {","}, {nullptr}, {0}},
        {"a b", {nullptr, nullptr}, {"a b", nullptr}, {0, 0}},
    };
    for (const auto& [text, seps, tokens, separators] : rows) {
        StringTok tok(text);
        for (std::size_t i = 0; i < seps.size(); ++i) {
            EXPECT_STREQ(tok(seps[i]), tokens[i]) << i;
            EXPECT_EQ(tok.Separator(), separators[i]) << i;
        }
    }
    EXPECT_TRUE(Fields(nullptr, ",", "").empty() && Fields("a,b", nullptr, nullptr) == Strings{"a,b"});
    // Copies go on from where the original stands, in their own text.
    StringTok tok("one two three");
    tok(" ");
    StringTok tcopy(tok);
    EXPECT_TRUE(!strcmp(tok(" "), "two") && !strcmp(tcopy(" "), "two"));
    tcopy = tok;
    EXPECT_STREQ(tcopy(" "), "three");
    StringSplitter f("a,b,c", ",", ""), copy(f);
    f.Next();
    EXPECT_TRUE(!strcmp(f.Field(), "b") && !strcmp(copy.Field(), "a"));
    copy = f;
    copy.Next();
    EXPECT_STREQ(copy.Field(), "c");
    f.Bind(" p , q ");
    f.Bind(f.Field()); // from its own text
    EXPECT_STREQ(f.Field(), " p ");
}
