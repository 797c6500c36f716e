// Linked lists against one std::deque model, each ring checked after every step: slist_t, DList, DPList
// and TOList<String_t> (over olist_t) behind one driver; the deliberate RemoveLast, TOList's own lookups
// and iterator; Split, Concat and the tokenizers against a reference; the comparators.
#include <tevbase/list.h>
#include <tevbase/strlist.h>

#include <support/testutil.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Model = std::deque<intptr_t>;

// Elements are small integers; 0 stands for "none".
void* P(intptr_t v) { return reinterpret_cast<void*>(v); }
intptr_t V(const void* p) { return reinterpret_cast<intptr_t>(p); }

struct Node : DLink {
    static int live;
    intptr_t v;
    explicit Node(intptr_t x) : v(x) { ++live; }
    ~Node() override { --live; }
};
int Node::live = 0;

// The value of a link or an element, and the match callbacks of each kind of list.
intptr_t Val(const DLink* l) { return l != nullptr ? static_cast<const Node*>(l)->v : 0; }
intptr_t Val(const DPLink* l) { return l != nullptr ? V(l->data) : 0; }
intptr_t Val(const slink_t* l) { return V(l->data); }
intptr_t Val(const void* d) { return V(d); }
int Is(const void* data, const void* key) { return data != key; }
int Is(const DLink* l, const void* key) { return Val(l) != V(key); }

// TOList<String_t> holds the values as decimal text.
using List = TOList<String_t>;
String_t S(intptr_t x) { return String_t(std::to_string(x).c_str()); }
intptr_t N(const String_t& s) { return std::atoi(s.Text()); }
intptr_t Val(const olink_t* l) { return N(static_cast<const TOLink<String_t>*>(l)->contents); }

// Uniq's comparison: values one apart are equal, which is not transitive, so which predecessor an
// element is compared with shows. Sort's: by value / 3, so equal keys hold different values and the
// order shows stability.
int Near(const void* a, const void* b) { return std::abs(V(a) - V(b)) > 1; }
int Near(const TOLink<String_t>* l, const String_t* v) { return std::abs(N(l->contents) - N(*v)) > 1; }
int By3(const void* a, const void* b) { return V(a) / 3 > V(b) / 3; }
int By3(const TOLink<String_t>* l, const String_t* v) { return N(l->contents) / 3 > N(*v) / 3; }

long disposed;
void Dispose(void*) { ++disposed; }
void Dispose(DLink* l) { ++disposed, delete l; }

// The ring behind last closes at last after exactly the model's size; prev mirrors next.
template <class Link, class M> void ExpectRing(const Link* last, const M& model)
{
    ASSERT_EQ(last == nullptr, model.empty());
    const Link* p = last;
    for (std::size_t i = 0; i < model.size(); ++i) {
        const Link* next = p->next;
        if constexpr (std::is_same_v<Link, DLink> || std::is_same_v<Link, DPLink>) {
            ASSERT_EQ(next->prev, p) << "at " << i;
        }
        p = next;
        ASSERT_EQ(Val(p), model[i]) << "at " << i;
        ASSERT_EQ(p == last, i + 1 == model.size()) << "at " << i;
    }
}

// Each list behind one face for the driver; Check also copies slist_t.
struct SlistSide {
    slist_t list;
    void Clear() { list.clear(); }
    void Append(intptr_t x) { EXPECT_EQ(list.append(P(x))->data, P(x)); }
    void Insert(intptr_t x) { list.insert(P(x)); }
    intptr_t RemoveFirst() { return V(list.removeTop()); }
    intptr_t Remove(intptr_t x) { return V(list.remove(Is, P(x))); }
    void RemoveLoop(intptr_t x) { list.removeLoop(Is, P(x), Dispose); }
    intptr_t Replace(intptr_t x, intptr_t y) { return V(list.Replace(Is, P(x), P(y))); }
    intptr_t Bottom() { return V(list.removeBottom()); }
    void Uniq() { list.Uniq(Near); }
    void Sort() { list.Sort(By3); }
    void Check(const Model& model)
    {
        list = slist_t(list);
        ExpectRing(list.last, model);
    }
};

// DList and DPList: In makes an element, Out takes a removed one (freeing a node).
DLink* In(DList*, intptr_t x) { return new Node(x); }
void* In(DPList*, intptr_t x) { return P(x); }
intptr_t Out(void* d) { return V(d); }
intptr_t Out(DLink* l) // taken links have their pointers cleared
{
    EXPECT_TRUE(l == nullptr || (l->next == nullptr && l->prev == nullptr));
    const intptr_t v = Val(l);
    delete l;
    return v;
}

template <class L, class It> struct DSide {
    L list;
    It it{list};
    void Clear() { list.Clear(), it.Reset(); }
    void Append(intptr_t x) { list.Append(In(&list, x)); }
    void Insert(intptr_t x) { list.Insert(In(&list, x)); }
    intptr_t RemoveFirst() { return Out(list.RemoveFirst()); }
    intptr_t Remove(intptr_t x) { return Out(list.Remove(Is, P(x))); }
    void RemoveLoop(intptr_t x) { list.RemoveLoop(Is, P(x), Dispose); }
    intptr_t Replace(intptr_t x, intptr_t y) { return V(list.Replace(Is, P(x), P(y))); }
    void ItInsert(intptr_t x) { it.Insert(In(&list, x)); }
    void ItAppend(intptr_t x) { it.Append(In(&list, x)); }
    intptr_t ItRemove() { return Out(it.Remove()); }
    intptr_t ItNext() { return Val(it()); }
    void Check(const Model& model) { ExpectRing(list.Last(), model); }
};

// Pop and Get stand for the removal at either end, Find for Replace; copies are checked as for slist_t.
struct TOListSide {
    List list;
    String_t key;
    const String_t* Key(intptr_t x) { return &(key = S(x)); }
    void Clear() { list.Clear(); }
    void Append(intptr_t x) { EXPECT_EQ(*list.Append(S(x)), S(x)); }
    void Insert(intptr_t x) { list.Insert(S(x)); }
    intptr_t RemoveFirst() { return list.First() != nullptr ? N(list.Pop()) : 0; }
    intptr_t Bottom() { return list.Last() != nullptr ? N(list.Get()) : 0; }
    intptr_t Remove(intptr_t x) { return list.Remove(StrListCmp, Key(x)) ? x : 0; }
    void RemoveLoop(intptr_t x)
    {
        disposed = list.Len();
        list.RemoveLoop(StrListCmp, Key(x));
        disposed -= list.Len();
    }
    intptr_t Replace(intptr_t x, intptr_t y)
    {
        String_t* s = list.Find(StrListCmp, Key(x));
        return s != nullptr ? (*s = S(y), x) : 0;
    }
    void Uniq() { list.Uniq(Near); }
    void Sort() { list.Sort(By3); }
    void Check(const Model& model)
    {
        list = List(list);
        ExpectRing(list.last, model);
    }
};

using Strings = std::vector<std::string>;

Strings Contents(const List& list)
{
    Strings out;
    for (TOListIterator<String_t> it(list); const String_t* s = it();)
        out.push_back(s->Text());
    return out;
}

Strings Fields(const char* s, const char* seps, const char* trim)
{
    Strings out;
    for (StringSplitter f(s, seps, trim); f.Valid(); f.Next())
        out.push_back(f.Field());
    return out;
}

} // namespace

template <class Side> class ListTest : public ::testing::Test {};
using Sides =
    ::testing::Types<SlistSide, DSide<DList, DListIterator>, DSide<DPList, DPListIterator>, TOListSide>;
TYPED_TEST_SUITE(ListTest, Sides);

TYPED_TEST(ListTest, RandomOperationsMatchModel)
{
    // slist_t and TOList have no iterator: their own operations take the iterator's cases, and the
    // iterator's position stays at the end.
    using T = TypeParam;
    constexpr bool iterates = !std::is_same_v<T, SlistSide> && !std::is_same_v<T, TOListSide>;
    std::mt19937 rng(5);
    TypeParam side;
    Model model;
    std::size_t pos = 0; // the iterator's index into the model; model.size() at the end
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        const intptr_t x = rng() % 8 + 1;
        const auto found = std::find(model.begin(), model.end(), x);
        const intptr_t hit = found != model.end() ? x : 0;
        // The iterator's own link is taken out only through the iterator.
        const bool own = pos < model.size() && model[pos] == x;
        bool was_end = pos == model.size();
        switch (rng() % 11) {
        case 0: side.Append(x), model.push_back(x); break;
        case 1: side.Insert(x), model.push_front(x), ++pos; break;
        case 2:
            if (pos != 0 || model.empty()) {
                EXPECT_EQ(side.RemoveFirst(), model.empty() ? 0 : model.front());
                if (!model.empty())
                    model.pop_front(), --pos;
            }
            break;
        case 3:
            if (!own) {
                EXPECT_EQ(side.Remove(x), hit);
                if (hit)
                    pos -= static_cast<std::size_t>(found - model.begin()) < pos, model.erase(found);
            }
            break;
        case 4:
            if (!own) {
                pos -= std::count(model.begin(), model.begin() + pos, x);
                disposed = 0;
                side.RemoveLoop(x);
                EXPECT_EQ(disposed, std::count(model.begin(), model.end(), x));
                model.erase(std::remove(model.begin(), model.end(), x), model.end());
            }
            break;
        case 5:
            if constexpr (!std::is_same_v<TypeParam, DSide<DList, DListIterator>>) {
                EXPECT_EQ(side.Replace(x, x + 8), hit);
                if (hit)
                    *found = x + 8;
            }
            break;
        case 6:
            if constexpr (iterates) {
                side.ItInsert(x);
                model.insert(model.begin() + pos++, x);
            } else {
                EXPECT_EQ(side.Bottom(), model.empty() ? 0 : model.back());
                if (!model.empty())
                    model.pop_back();
            }
            break;
        case 7:
            if constexpr (iterates) {
                side.ItAppend(x);
                model.insert(was_end ? model.end() : model.begin() + pos + 1, x);
            } else if constexpr (std::is_same_v<TypeParam, TOListSide>) { // reversed into another list
                List out;
                out.Append("stale");
                EXPECT_EQ(&side.list.Reverse(out), &out);
                side.list = out;
                std::reverse(model.begin(), model.end());
            } else { // splice another list at either end
                slist_t other;
                const Model more(x % 4, x);
                for (intptr_t m : more)
                    other.append(P(m));
                x % 2 ? side.list.append(other) : side.list.insert(other);
                model.insert(x % 2 ? model.end() : model.begin(), more.begin(), more.end());
                EXPECT_EQ(other.last, nullptr);
            }
            break;
        case 8:
            if constexpr (iterates) {
                EXPECT_EQ(side.ItRemove(), was_end ? 0 : model[pos]);
                if (!was_end)
                    model.erase(model.begin() + pos);
            } else { // each element is compared with its predecessor as the list stood
                side.Uniq();
                for (std::size_t i = model.size(); i-- > 1;)
                    if (std::abs(model[i] - model[i - 1]) <= 1)
                        model.erase(model.begin() + static_cast<long>(i));
            }
            break;
        case 9:
            if constexpr (iterates) {
                EXPECT_EQ(side.ItNext(), was_end ? 0 : model[pos]);
                pos += !was_end;
            } else {
                side.Sort();
                std::stable_sort(model.begin(), model.end(), [](auto a, auto b) { return a / 3 < b / 3; });
            }
            break;
        default:
            if constexpr (iterates)
                side.it.Reset(), pos = 0, was_end = false;
        }
        if (was_end) // an iterator at the end stays there whatever is added or removed
            pos = model.size();
        ASSERT_NO_FATAL_FAILURE(side.Check(model));
        if constexpr (iterates) {
            ASSERT_EQ(Val(side.it.Current()), pos < model.size() ? model[pos] : 0);
        }
        ASSERT_EQ(side.list.Len(), static_cast<int>(model.size()));
        if (model.size() > 30) // afresh now and then: short lists empty often
            side.Clear(), model.clear(), pos = 0;
    }
    side.Clear();
    EXPECT_EQ(Node::live, 0);
}

TEST(ListTest, RemoveLastLeavesTheOtherLinksOut)
{
    Node a(1), b(2), c(3);
    DList list;
    list.Append(&a), list.Append(&b), list.Append(&c);
    EXPECT_EQ(list.RemoveLast(), &c);
    EXPECT_TRUE(list.Last() == nullptr && a.next == &b && list.RemoveLast() == nullptr); // not unlinked
    DPList plist;
    plist.Append(P(1)), plist.Append(P(2));
    EXPECT_TRUE(V(plist.RemoveLast()) == 2 && plist.First() == nullptr);
}

TEST(TOListTest, LookupsIndexAndIteratorEnds)
{
    List list;
    list.Append("b"), list.Append("a");
    const auto cmp = StrListCaseCmp;
    EXPECT_EQ(*list.FindOrInsert("A", cmp), "a"); // found: nothing added
    EXPECT_TRUE(*list.FindOrAppend("c", cmp) == "c" && *list.FindOrInsert("d", cmp) == "d");
    EXPECT_TRUE(*list.ReplaceOrInsert("B", cmp) == "B" && *list.ReplaceOrAppend("e", cmp) == "e");
    EXPECT_EQ(Contents(list), (Strings{"d", "B", "a", "c", "e"}));
    EXPECT_TRUE(*list[4] == "e" && list[5] == nullptr && list[-1] == nullptr);
    // operator() stops at the last link as it was at binding; operator++ goes on until the ring wraps.
    TOListIterator<String_t> call(list), step(list);
    list.Append("f");
    int called = 0, stepped = 0;
    while (call())
        ++called;
    for (; step; ++step)
        ++stepped;
    EXPECT_TRUE(called == 5 && stepped == 6);
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

// Split cuts at every separator and Concat puts the fields back together; StringTok gives the runs
// between separators, which collapse. StringSplitter gives a field at the start and after each
// separator unless only trim characters remain, trimmed at both ends without looking back past the
// field's own start.
TEST(StrListTest, SplitAndTokenizersAgreeWithAReference)
{
    std::mt19937 rng(23);
    for (int i = 0; i < 3000; ++i) {
        std::string s(rng() % 9, ' ');
        for (char& c : s)
            c = "ab +,;"[rng() % 6];
        SCOPED_TRACE("\"" + s + "\"");
        Strings fields(1);
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
        List list;
        list.Append("kept");
        EXPECT_EQ(Split(s.c_str(), list, ",;"), static_cast<int>(fields.size()));
        EXPECT_EQ(list.Pop(), "kept");
        EXPECT_EQ(Contents(list), fields);
        EXPECT_FALSE(list.First()->contents.IsNull());
        StringTok tok(s.c_str()); // with separators that change from call to call
        for (std::size_t at = 0, end;; at = end + 1) {
            const char* seps = rng() % 2 ? ",;" : ";+";
            const char* t = tok(seps);
            if ((at = s.find_first_not_of(seps, at)) >= s.size()) {
                EXPECT_EQ(t, nullptr);
                break;
            }
            end = std::min(s.find_first_of(seps, at), s.size());
            ASSERT_NE(t, nullptr);
            EXPECT_EQ(t, s.substr(at, end - at));
            EXPECT_EQ(tok.Separator(), end < s.size() ? s[end] : 0);
        }
        std::replace(s.begin(), s.end(), ';', ',');
        EXPECT_EQ(Concat(list, ','), s.c_str());
    }
    List list;
    EXPECT_TRUE(Split(nullptr, list, ",") == 0 && Split("a b", list, nullptr) == 1); // without separators
    EXPECT_TRUE(Concat(String_t("a"), String_t("b"), ", ") == "a, b" && !Concat(List(), '/').IsNull());
    const TOLink<String_t> abc{String_t("abc")}, none{String_t()};
    const String_t abd("ABD"), blank("");
    EXPECT_TRUE(StrListCmp(&abc, &abd) > 0 && StrListCaseCmp(&abc, &abd) == 'C' - 'D');
    EXPECT_TRUE(StrListCmp(&none, &blank) < 0 && StrListCaseCmp(&none, &blank) < 0); // null before ""
}

TEST(TokenizerTest, NullsCopiesAndRebinding)
{
    StringTok none(nullptr), whole("a b"); // null text, null separators
    EXPECT_TRUE(none(",") == nullptr && !strcmp(whole(nullptr), "a b") && whole(nullptr) == nullptr);
    EXPECT_TRUE(Fields(nullptr, ",", "").empty() && Fields("a,b", nullptr, nullptr) == Strings{"a,b"});
    // Copies go on from where the original stands, in their own text.
    StringTok tok("one two three");
    tok(" ");
    StringTok tcopy(tok);
    EXPECT_TRUE(!strcmp(tok(" "), "two") && !strcmp(tcopy(" "), "two"));
    StringSplitter f("a,b,c", ",", ""), copy(",", ",", "");
    f.Next();
    copy = f;
    copy.Next();
    EXPECT_TRUE(!strcmp(f.Field(), "b") && !strcmp(copy.Field(), "c"));
    f.Bind(" p , q ");
    f.Bind(f.Field()); // from its own text
    EXPECT_STREQ(f.Field(), " p ");
}
