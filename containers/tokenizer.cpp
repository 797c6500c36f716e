// StringTok and StringSplitter: tokenizers that cut a private copy of their text in place.
#include <tevbase/strlist.h>

#include <cstring>
#include <new>
#include <utility>

namespace {

// A private, writable copy of the n + 1 bytes at s (NULs included) held by out; returns its start.
char* copy_bytes(String_t& out, const char* s, std::size_t n)
{
    if (n > 0xFFFFFFFEu)
        throw std::bad_alloc(); // texts have 32-bit lengths
    char* p = out.Reserve(static_cast<unsigned>(n));
    std::memcpy(p, s, n + 1);
    return p;
}

inline bool in_set(const char* set, char c)
{
    return c != '\0' && std::strchr(set, c) != nullptr;
}

} // namespace

StringTok::StringTok(const char* s) : pos(nullptr), saved(0)
{
    if (s != nullptr && *s != '\0')
        pos = copy_bytes(buf, s, std::strlen(s));
}

StringTok::StringTok(const StringTok& other) : pos(nullptr), saved(other.saved)
{
    if (other.pos != nullptr) {
        // Everything up to the end of the text, including the NULs that earlier tokens left.
        const char* start = other.buf.Chars();
        const std::size_t offset = static_cast<std::size_t>(other.pos - start);
        pos = copy_bytes(buf, start, offset + std::strlen(other.pos)) + offset;
    }
}

StringTok& StringTok::operator=(const StringTok& other)
{
    StringTok copy(other);
    Swap(copy);
    return *this;
}

StringTok& StringTok::operator=(const char* s)
{
    StringTok fresh(s);
    Swap(fresh);
    return *this;
}

void StringTok::Swap(StringTok& other)
{
    buf.swap(other.buf);
    std::swap(pos, other.pos);
    std::swap(saved, other.saved);
}

char* StringTok::operator()(const char* seps)
{
    if (pos == nullptr || *pos == '\0')
        return nullptr;
    if (seps == nullptr)
        seps = "";
    pos += std::strspn(pos, seps);
    if (*pos == '\0')
        return nullptr;
    char* token = pos;
    char* e = token + std::strcspn(token, seps);
    if (*e != '\0') {
        saved = *e;
        *e = '\0';
        pos = e + 1;
    } else {
        saved = 0;
        pos = nullptr;
    }
    return token;
}

StringSplitter::StringSplitter(const char* s, const char* seps_, const char* trim_)
    : seps(seps_), trim(trim_), cur(nullptr), end(nullptr), step(0)
{
    Start(s);
}

StringSplitter::StringSplitter(const StringSplitter& other)
    : seps(other.seps), trim(other.trim), cur(nullptr), end(nullptr), step(other.step)
{
    const char* start = other.text.Chars();
    if (start != nullptr) {
        // The whole text with the cuts made so far; cur may lie one past the end.
        const std::size_t n = static_cast<std::size_t>(other.end - start);
        char* p = copy_bytes(text, start, n);
        cur = p + (other.cur - start);
        end = p + n;
    }
}

StringSplitter& StringSplitter::operator=(const StringSplitter& other)
{
    StringSplitter copy(other);
    Swap(copy);
    return *this;
}

void StringSplitter::Swap(StringSplitter& other)
{
    text.swap(other.text);
    seps.swap(other.seps);
    trim.swap(other.trim);
    std::swap(cur, other.cur);
    std::swap(end, other.end);
    std::swap(step, other.step);
}

void StringSplitter::Bind(const char* s)
{
    Start(s);
}

void StringSplitter::Start(const char* s)
{
    String_t fresh;
    cur = end = nullptr;
    if (s != nullptr) {
        const std::size_t n = std::strlen(s);
        cur = copy_bytes(fresh, s, n);
        end = cur + n;
    }
    text.swap(fresh);
    step = 0;
    Next();
}

void StringSplitter::Next()
{
    if (cur == nullptr)
        return;
    cur += step;
    if (cur >= end) {
        step = 0; // at or past the end: a trailing separator makes no empty field
        return;
    }
    const char* trims = trim.Text();
    if (*trims != '\0') {
        while (in_set(trims, *cur))
            ++cur;
        if (*cur == '\0') {
            step = 0;
            return;
        }
    }
    if (*cur == '\0') {
        step = 1;
        return;
    }
    char* e = cur + std::strcspn(cur, seps.Text());
    step = static_cast<unsigned>(e - cur) + 1;
    if (*trims != '\0') {
        // Trailing trim characters go; the walk never looks at the field's first character, so an
        // empty field (e == cur) never reaches back before it.
        while (e > cur + 1 && in_set(trims, e[-1]))
            --e;
    }
    *e = '\0';
}
