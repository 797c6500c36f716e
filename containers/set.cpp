// Set and Setiterator: bit vectors of 32-bit words, their algebra and their text syntax.
#include <tevbase/set.h>

#include <assert.h>
#include <stdarg.h>

#include <algorithm>
#include <iostream>
#include <string>

namespace {

inline unsigned popcount(uint32_t w)
{
    return static_cast<unsigned>(__builtin_popcount(w));
}

// Bits from..31 of a word, and bits 0..to.
inline uint32_t bits_from(unsigned from)
{
    return ~0u << from;
}
inline uint32_t bits_to(unsigned to)
{
    return ~0u >> (31 - to);
}

// Tokens of the set syntax. Blanks and tabs separate tokens; a digit starts a decimal number.
struct Token {
    enum Kind { kEnd, kNumber, kChar, kTooBig } kind;
    unsigned value;    // kNumber
    char c;            // kChar
    std::string text;  // kTooBig: the digits as written
};

class Lexer {
public:
    explicit Lexer(const char* text) : p_(text) {}

    Token Next()
    {
        while (*p_ == ' ' || *p_ == '\t')
            ++p_;
        if (*p_ == '\0')
            return {Token::kEnd, 0, 0, {}};
        if (*p_ < '0' || *p_ > '9')
            return {Token::kChar, 0, *p_++, {}};
        // The range of an int: what the stream extraction of an int accepts.
        const char* start = p_;
        unsigned long long v = 0;
        for (; *p_ >= '0' && *p_ <= '9'; ++p_)
            if (v <= 0x7FFFFFFF)
                v = v * 10 + static_cast<unsigned>(*p_ - '0');
        if (v > 0x7FFFFFFF)
            return {Token::kTooBig, 0, 0, std::string(start, p_)};
        return {Token::kNumber, static_cast<unsigned>(v), 0, {}};
    }

private:
    const char* p_;
};

void syntax_error(const Token& t)
{
    std::string near;
    switch (t.kind) {
    case Token::kEnd:
        near = "EOF";
        break;
    case Token::kNumber:
        near = std::to_string(t.value);
        break;
    case Token::kTooBig:
        near = t.text;
        break;
    case Token::kChar:
        near = t.c == ',' ? std::string("separator") : std::string(1, t.c);
        break;
    }
    std::cerr << "Set::add(const char*): syntax error near \"" << near << '"' << std::endl;
}

inline bool is_char(const Token& t, char c)
{
    return t.kind == Token::kChar && t.c == c;
}

} // namespace

Set::Set(unsigned int n) : fixed(0), num(n / 32), words(num != 0 ? new uint32_t[num]() : nullptr) {}

Set::Set(unsigned int nwords, uint32_t* w) : fixed(1), num(nwords), words(w)
{
    std::fill_n(words, num, 0u);
}

Set::Set(unsigned int n, uint32_t* w, const Set& s) : fixed(1), num(n), words(w)
{
    assert(n == s.num);
    std::copy_n(s.words, num, words);
}

Set::Set(const Set& s) : fixed(0), num(s.num), words(num != 0 ? new uint32_t[num] : nullptr)
{
    std::copy_n(s.words, num, words);
}

Set::Set(const char* text) : Set()
{
    add(text);
}

Set::Set(unsigned int n, const int* a) : Set()
{
    add(n, a);
}

Set::Set(int first, int second, ...) : Set()
{
    if (first < 0)
        return;
    add(static_cast<unsigned>(first));
    if (second < 0)
        return;
    add(static_cast<unsigned>(second));
    va_list ap;
    va_start(ap, second);
    try {
        for (int i; (i = va_arg(ap, int)) >= 0;)
            add(static_cast<unsigned>(i));
    } catch (...) {
        va_end(ap);
        throw;
    }
    va_end(ap);
}

Set::~Set()
{
    if (!fixed)
        delete[] words;
}

Set& Set::operator=(const Set& s)
{
    if (&s == this)
        return *this;
    if (fixed || num == s.num) {
        assert(num == s.num);
        std::copy_n(s.words, num, words);
        return *this;
    }
    uint32_t* w = s.num != 0 ? new uint32_t[s.num] : nullptr;
    std::copy_n(s.words, s.num, w);
    delete[] words;
    words = w;
    num = s.num;
    return *this;
}

void Set::bumpsize(unsigned int i)
{
    const uint32_t need = i / 32 + 1;
    if (fixed || num >= need)
        return;
    uint32_t* w = new uint32_t[need]();
    std::copy_n(words, num, w);
    delete[] words;
    words = w;
    num = need;
}

void Set::add(unsigned int i)
{
    bumpsize(i);
    // A fixed set cannot grow: a member beyond its caller's storage would write past it.
    assert(i / 32 < num);
    words[i / 32] |= 1u << (i % 32);
}

void Set::add(unsigned int n, const int* a)
{
    for (unsigned int k = 0; k < n; ++k)
        if (a[k] >= 0)
            add(static_cast<unsigned>(a[k]));
}

void Set::addrange(unsigned int from, unsigned int to)
{
    bumpsize(to); // once, not a word at a time
    assert(to / 32 < num);
    const unsigned first = from / 32, last = to / 32;
    if (first == last) {
        words[first] |= bits_from(from % 32) & bits_to(to % 32);
        return;
    }
    words[first] |= bits_from(from % 32);
    std::fill(words + first + 1, words + last, ~0u);
    words[last] |= bits_to(to % 32);
}

void Set::add(const char* text)
{
    if (text == nullptr)
        return;
    Lexer lex(text);
    Set t; // no words: a complement flips exactly the words the members need
    Token tok = lex.Next();
    const bool complement = is_char(tok, '-');
    if (complement)
        tok = lex.Next();
    for (;;) {
        if (tok.kind == Token::kEnd)
            break;
        if (is_char(tok, ',')) {
            tok = lex.Next();
            continue;
        }
        if (tok.kind != Token::kNumber) {
            syntax_error(tok);
            return;
        }
        const unsigned n = tok.value;
        tok = lex.Next();
        if (is_char(tok, '-')) {
            tok = lex.Next();
            if (tok.kind == Token::kNumber) {
                if (tok.value >= n)
                    t.addrange(n, tok.value);
                tok = lex.Next();
            }
            // At the end, or before anything else, a dangling range adds nothing.
        } else if (tok.kind == Token::kEnd) {
            t.add(n);
        } else if (is_char(tok, ',')) {
            t.add(n);
            tok = lex.Next();
        }
        // Otherwise (another number: "1 2") n is dropped; callers rely on commas separating members.
    }
    *this |= t;
    if (complement)
        ~*this;
}

void Set::remove(unsigned int i)
{
    if (i / 32 < num)
        words[i / 32] &= ~(1u << (i % 32));
}

void Set::remove(unsigned int n, const int* a)
{
    for (unsigned int k = 0; k < n; ++k)
        if (a[k] >= 0)
            remove(static_cast<unsigned>(a[k]));
}

void Set::clear()
{
    std::fill_n(words, num, 0u);
}

unsigned int Set::size() const
{
    unsigned int n = 0;
    for (uint32_t i = 0; i < num; ++i)
        n += popcount(words[i]);
    return n;
}

unsigned int Set::max() const
{
    for (uint32_t i = num; i-- > 0;)
        if (words[i] != 0)
            return 32 * i + (32 - static_cast<unsigned>(__builtin_clz(words[i])));
    return 0;
}

unsigned int Set::get(int* out) const
{
    Setiterator it(*this);
    for (int i; (i = it()) >= 0 && static_cast<unsigned>(i) < num;)
        *out++ = i;
    return size();
}

Set& Set::operator|=(const Set& s)
{
    if (s.num > num)
        bumpsize(32 * s.num - 1);
    const uint32_t common = std::min(num, s.num);
    for (uint32_t i = 0; i < common; ++i)
        words[i] |= s.words[i];
    return *this;
}

Set& Set::operator&=(const Set& s)
{
    if (s.num > num)
        bumpsize(32 * s.num - 1);
    const uint32_t common = std::min(num, s.num);
    for (uint32_t i = 0; i < common; ++i)
        words[i] &= s.words[i];
    std::fill(words + common, words + num, 0u);
    return *this;
}

Set& Set::operator-=(const Set& s)
{
    const uint32_t common = std::min(num, s.num);
    for (uint32_t i = 0; i < common; ++i)
        words[i] &= ~s.words[i];
    return *this;
}

Set& Set::operator^=(const Set& s)
{
    if (s.num > num)
        bumpsize(32 * s.num - 1);
    const uint32_t common = std::min(num, s.num);
    for (uint32_t i = 0; i < common; ++i)
        words[i] ^= s.words[i];
    return *this;
}

Set& Set::operator~()
{
    for (uint32_t i = 0; i < num; ++i)
        words[i] = ~words[i];
    return *this;
}

bool Set::operator==(const Set& s) const
{
    const uint32_t common = std::min(num, s.num);
    if (!std::equal(words, words + common, s.words))
        return false;
    const Set& longer = num > s.num ? *this : s;
    return std::all_of(longer.words + common, longer.words + longer.num, [](uint32_t w) { return w == 0; });
}

bool Set::operator<=(const Set& s) const
{
    const uint32_t common = std::min(num, s.num);
    for (uint32_t i = 0; i < common; ++i)
        if ((words[i] & ~s.words[i]) != 0)
            return false;
    // Only the first extra word is examined (deliberate).
    return num <= s.num || words[s.num] == 0;
}

bool operator&&(const Set& a, const Set& b)
{
    const uint32_t common = std::min(a.num, b.num);
    for (uint32_t i = 0; i < common; ++i)
        if ((a.words[i] & b.words[i]) != 0)
            return true;
    return false;
}

Setiterator::Setiterator(const Set& s) : pos(0), limit(32 * s.num), words(s.words)
{
    Reset();
}

unsigned int Setiterator::next(unsigned int i) const
{
    if (i >= limit)
        return limit;
    unsigned int w = i / 32;
    uint32_t bits = words[w] & bits_from(i % 32);
    while (bits == 0) {
        if (++w == limit / 32)
            return limit;
        bits = words[w];
    }
    return 32 * w + static_cast<unsigned>(__builtin_ctz(bits));
}

void Setiterator::Reset()
{
    pos = next(0);
}

int Setiterator::operator()()
{
    if (pos >= limit)
        return -1;
    const unsigned int member = pos;
    pos = next(pos + 1);
    return static_cast<int>(member);
}

Setiterator& Setiterator::operator++()
{
    if (pos < limit)
        pos = next(pos + 1);
    return *this;
}

Setiterator Setiterator::operator++(int)
{
    Setiterator before = *this;
    ++*this;
    return before;
}
