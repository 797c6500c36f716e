// Set: a set of small non-negative integers kept as a bit vector; Setiterator walks its members.
#ifndef TEVBASE_SET_H
#define TEVBASE_SET_H

#include <stdint.h>

#include <type_traits>

#include <tevbase/config.h>

// Member i is bit i % 32 of word i / 32; words are 32 bits on every target. A set either owns its
// words and grows on demand to exactly the word that holds a new member, or works in storage that the
// caller supplies, of fixed size. The universe of operator~ is the current capacity, 32 * nwords().
//
// Sets of different sizes combine over their common words; beyond them:
//   |=, ^=   an owned set first grows to the other's size; a fixed set ignores the other's extra words
//   &=       an owned set grows to the other's size; words beyond the other's are cleared
//   -=       extra words on either side change nothing
//   ==       extra words must be zero: sets with the same members are equal whatever their sizes
//   <=       only the first of this set's extra words must be zero (callers rely on that)
//   &&       extra words are ignored
// Not thread-safe.
class TEVBASE_API Set {
public:
    // Owned storage of n / 32 words, all zero. n is rounded down (Set(40) has one word); add grows
    // the set when a member needs more.
    explicit Set(unsigned int n = 0);
    // Set(unsigned int) for every integer type, so that Set(0) is not taken for Set(const char*); a
    // negative n gives no words.
    template <class I, class = typename std::enable_if<std::is_integral<I>::value>::type>
    explicit Set(I n) : Set(negative(n) ? 0u : static_cast<unsigned int>(n))
    {
    }
    // The caller's nwords words at w, which are zeroed; never grown or freed.
    Set(unsigned int nwords, uint32_t* w);
    // The caller's n words at w, holding a copy of s; asserts "n == s.num".
    Set(unsigned int n, uint32_t* w, const Set& s);
    // An owned copy.
    Set(const Set& s);
    // An owned set with no words, then add(text).
    explicit Set(const char* text);
    // An owned set with no words, then add(n, a).
    Set(unsigned int n, const int* a);
    // An owned set with no words holding the arguments up to the first negative one, which ends the
    // list: Set(1, 5, 9, -1) is {1, 5, 9}, Set(4, -1) is {4}. Without the terminator the list is read
    // past its end (undefined behaviour, as with every C variadic list).
    Set(int first, int second, ...);
    ~Set();

    // A copy of s. An owned set takes s's word count; a fixed set asserts "num == s.num".
    Set& operator=(const Set& s);

    // Grows an owned set to i / 32 + 1 words when it has fewer, new words zero. A fixed set stays.
    void bumpsize(unsigned int i);
    // Adds i, growing an owned set. On a fixed set i must lie below 32 * nwords() (asserted).
    void add(unsigned int i);
    // add(unsigned int) for every integer type, so that add(0) is not taken for add(const char*); a
    // negative i is not a member and adds nothing.
    template <class I, class = typename std::enable_if<std::is_integral<I>::value>::type> void add(I i)
    {
        if (!negative(i))
            add(static_cast<unsigned int>(i));
    }
    // Adds the n members listed in a; negative entries are not members and are skipped.
    void add(unsigned int n, const int* a);
    // Adds the members written in text: decimal numbers (at most 2147483647) and ranges n-m separated
    // by commas, blanks and tabs between them, such as "1,3,5-9". A leading '-' complements the whole
    // set afterwards, members from before the call included: "-0-3" on an empty owned set gives
    // {4, ..., 31}. Kept leniencies: a number followed by neither ',', '-' nor the end is dropped ("1 2"
    // adds only 2); a range without its end adds nothing ("4-"; "4-,5" adds only 5); so does n-m with
    // m < n. Any other character is a syntax error: nothing is added, and standard error gets the line
    //     Set::add(const char*): syntax error near "x"
    // Null adds nothing.
    void add(const char* text);
    // Removes i; members beyond the capacity are absent anyway.
    void remove(unsigned int i);
    // Removes the n members listed in a; negative entries are skipped.
    void remove(unsigned int n, const int* a);
    // Removes every member; the size stays.
    void clear();

    // Whether i is a member.
    bool has(unsigned int i) const { return i / 32 < num && (words[i / 32] >> (i % 32) & 1u) != 0; }
    // The number of members.
    unsigned int size() const;
    // The largest member plus one; 0 for the empty set.
    unsigned int max() const;
    // Writes the members below nwords() (the word count, not the bit count: deliberate) to out in
    // ascending order, and returns size(). Size out by size(); members from nwords() on are counted
    // but not written.
    unsigned int get(int* out) const;
    // The number of 32-bit words; the set holds members 0 to 32 * nwords() - 1.
    unsigned int nwords() const { return num; }
    // Whether the words are the caller's.
    bool isfixed() const { return fixed != 0; }

    Set& operator|=(const Set& s);
    Set& operator&=(const Set& s);
    Set& operator-=(const Set& s);
    Set& operator^=(const Set& s);
    // Complements every word in place.
    Set& operator~();
    bool operator==(const Set& s) const;
    bool operator!=(const Set& s) const { return !(*this == s); }
    // Subset test, see the class comment for sets of different sizes.
    bool operator<=(const Set& s) const;
    // Whether the sets share a member within their common words.
    friend TEVBASE_API bool operator&&(const Set& a, const Set& b);

private:
    friend class Setiterator;

    template <class I> static bool negative(I i)
    {
        return std::is_signed<I>::value && static_cast<long long>(i) < 0;
    }

    // Sets bits from..to (from <= to) of an owned or big enough set, growing it first.
    void addrange(unsigned int from, unsigned int to);

    int fixed;       // 1: the words belong to the caller
    uint32_t num;    // words
    uint32_t* words; // null when num is 0
};

// Walks the members of a set in ascending order:
//
//     Setiterator it(s);
//     for (int i; (i = it()) >= 0;) ...
//
// The iterator reads the set's words directly: growing an owned set or assigning to it (which may
// move its words) invalidates the iterator; other changes show in the rest of the walk.
class TEVBASE_API Setiterator {
public:
    explicit Setiterator(const Set& s);

    // Back to the first member.
    void Reset();
    // The current member, moving on to the next; -1 once the members are exhausted.
    int operator()();
    // The current member, -1 when exhausted.
    int operator*() const { return pos < limit ? static_cast<int>(pos) : -1; }
    // Moves to the next member.
    Setiterator& operator++();
    Setiterator operator++(int);

private:
    // The first member at or after i, or limit.
    unsigned int next(unsigned int i) const;

    unsigned int pos;   // the member the next call returns
    unsigned int limit; // 32 * the set's words
    const uint32_t* words;
};

#endif
