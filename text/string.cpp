// Reference-counted string.
#include <tevbase/pool.h>
#include <tevbase/string.h>

#include <cctype>
#include <istream>
#include <memory>
#include <new>
#include <ostream>
#include <string>

namespace {

Pool srep_pool;
constexpr unsigned kSrepBlock = 8192;

using Array = std::unique_ptr<char[]>;

inline bool is_space(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// n + 1 characters, the first a NUL; n + 1 must fit 32 bits.
Array new_array(uint32_t n)
{
    if (n == 0xFFFFFFFFu)
        throw std::bad_alloc();
    Array a(new char[n + 1]);
    a[0] = '\0';
    return a;
}

Array copy_of(const char* s, std::size_t n)
{
    if (n > 0xFFFFFFFEu)
        throw std::bad_alloc();
    Array a(new char[n + 1]);
    std::memcpy(a.get(), s, n);
    a[n] = '\0';
    return a;
}

// head followed by tail, both non-null.
Array concat(const char* head, const char* tail)
{
    const std::size_t n1 = std::strlen(head), n2 = std::strlen(tail);
    if (n1 > 0xFFFFFFFEu || n2 > 0xFFFFFFFEu - n1)
        throw std::bad_alloc();
    Array a(new char[n1 + n2 + 1]);
    std::memcpy(a.get(), head, n1);
    std::memcpy(a.get() + n1, tail, n2 + 1);
    return a;
}

// The text from b without its trailing isspace characters; none left gives null data.
String_t without_trailing_blanks(const char* b)
{
    const char* e = b + std::strlen(b);
    while (e > b && is_space(e[-1]))
        --e;
    return String_t(b, static_cast<unsigned>(e - b));
}

// What a word or line read collected: null data, with the stream's failure kept, when nothing;
// otherwise the text, with the stream's state cleared.
void store_read(std::istream& is, String_t& s, const std::string& text)
{
    if (text.empty()) {
        s = String_t();
    } else {
        s = text.c_str();
        is.clear();
    }
}

// A copy of text with every character for which change(c) differs from c replaced by it.
template <class F> String_t mapped(const char* text, F change)
{
    if (text == nullptr)
        return String_t();
    String_t out(text);
    for (char* p = const_cast<char*>(out.Chars()); *p != '\0'; ++p)
        *p = change(*p);
    return out;
}

} // namespace

void* String_t::Srep::operator new(std::size_t size)
{
    return srep_pool.New(size, sizeof(Srep), kSrepBlock);
}

void String_t::Srep::operator delete(void* p, std::size_t size)
{
    srep_pool.Delete(p, size, sizeof(Srep));
}

void String_t::Free(Srep* rep) noexcept
{
    delete[] rep->data;
    delete rep;
}

String_t::String_t() : rep_(new Srep{nullptr, 1}) {}

String_t::String_t(const char* s) : rep_(nullptr)
{
    Array a = s != nullptr ? copy_of(s, std::strlen(s)) : nullptr;
    rep_ = new Srep{a.release(), 1};
}

String_t::String_t(const char* s, unsigned n) : rep_(nullptr)
{
    Array a;
    if (s != nullptr && n != 0) {
        a = new_array(n);
        std::strncpy(a.get(), s, n);
        a[n] = '\0';
    }
    rep_ = new Srep{a.release(), 1};
}

String_t::String_t(unsigned n) : rep_(nullptr)
{
    Array a = new_array(n);
    rep_ = new Srep{a.get(), 1};
    a.release();
}

String_t& String_t::operator=(const String_t& other) noexcept
{
    ++other.rep_->count; // first, so that s = s keeps the representation alive
    if (--rep_->count == 0)
        Free(rep_);
    rep_ = other.rep_;
    return *this;
}

// The new text is complete before the old one goes, so a failed allocation leaves the string as it was.
void String_t::Adopt(char* data)
{
    Array a(data);
    if (rep_->count < 2) {
        delete[] rep_->data;
    } else {
        Srep* fresh = new Srep{nullptr, 1};
        --rep_->count;
        rep_ = fresh;
    }
    rep_->data = a.release();
}

String_t& String_t::operator=(const char* s)
{
    Adopt(s != nullptr ? copy_of(s, std::strlen(s)).release() : nullptr);
    return *this;
}

String_t& String_t::operator+=(const char* s)
{
    if (s != nullptr)
        Adopt(concat(Text(), s).release());
    return *this;
}

String_t& String_t::Prepend(const char* s)
{
    if (s != nullptr)
        Adopt(concat(s, Text()).release());
    return *this;
}

char* String_t::Reserve(unsigned n)
{
    Array a = new_array(n);
    delete[] rep_->data;
    rep_->data = a.release();
    return rep_->data;
}

char* String_t::Save() const
{
    return rep_->data != nullptr ? copy_of(rep_->data, std::strlen(rep_->data)).release() : nullptr;
}

String_t String_t::SubStr(unsigned from, unsigned to) const
{
    if (rep_->data == nullptr)
        return String_t();
    const char* start = rep_->data + from;
    int32_t len = static_cast<int32_t>(to + 1 - from);
    const int32_t rest = static_cast<int32_t>(std::strlen(start));
    if (rest < len)
        len = rest;
    return String_t(start, len > 0 ? static_cast<unsigned>(len) : 0u);
}

String_t String_t::Trim() const
{
    if (rep_->data == nullptr)
        return String_t();
    const char* b = rep_->data;
    while (*b != '\0' && is_space(*b))
        ++b;
    return without_trailing_blanks(b);
}

String_t String_t::TrimLeft() const
{
    if (rep_->data == nullptr)
        return String_t();
    const char* b = rep_->data;
    if (*b == '\0')
        return String_t();
    // The last character is never examined: " " and "   " keep one blank.
    while (b[1] != '\0' && is_space(*b))
        ++b;
    return String_t(b);
}

String_t String_t::TrimRight() const
{
    if (rep_->data == nullptr)
        return String_t();
    return without_trailing_blanks(rep_->data);
}

String_t String_t::Toupper() const
{
    return mapped(rep_->data, [](char c) {
        const int u = static_cast<unsigned char>(c);
        return std::islower(u) ? static_cast<char>(std::toupper(u)) : c;
    });
}

String_t String_t::Tolower() const
{
    return mapped(rep_->data, [](char c) {
        const int u = static_cast<unsigned char>(c);
        return std::isupper(u) ? static_cast<char>(std::tolower(u)) : c;
    });
}

String_t String_t::Subst(char from, char to) const
{
    return mapped(rep_->data, [from, to](char c) { return c == from ? to : c; });
}

String_t String_t::Subst(const char* set, char to) const
{
    const char* chars = set != nullptr ? set : "";
    return mapped(rep_->data, [chars, to](char c) { return std::strchr(chars, c) != nullptr ? to : c; });
}

String_t operator+(const String_t& a, const char* b)
{
    String_t r(a);
    r += b;
    return r;
}

std::ostream& operator<<(std::ostream& os, const String_t& s)
{
    return os << s.Text();
}

std::istream& operator>>(std::istream& is, String_t& s)
{
    using traits = std::istream::traits_type;
    for (;;) {
        const traits::int_type c = is.get();
        if (traits::eq_int_type(c, traits::eof()))
            return is; // string unchanged, failure kept
        if (!is_space(traits::to_char_type(c))) {
            is.putback(traits::to_char_type(c));
            break;
        }
    }
    std::string word;
    word.reserve(1024);
    for (;;) {
        const traits::int_type c = is.get();
        if (traits::eq_int_type(c, traits::eof()))
            break;
        const char ch = traits::to_char_type(c);
        if (is_space(ch)) {
            is.putback(ch);
            break;
        }
        word += ch;
    }
    store_read(is, s, word);
    return is;
}

std::istream& String_t::Getline(std::istream& in, String_t& out, const char* delim)
{
    using traits = std::istream::traits_type;
    const std::size_t n = delim != nullptr ? std::strlen(delim) : 0;
    std::string line;
    line.reserve(1024);
    for (;;) {
        const traits::int_type c = in.get();
        if (traits::eq_int_type(c, traits::eof()))
            break;
        line += traits::to_char_type(c);
        if (n != 0 && line.size() >= n && line.compare(line.size() - n, n, delim) == 0) {
            line.resize(line.size() - n);
            out = line.c_str(); // an empty line is "", not null data
            return in;
        }
    }
    store_read(in, out, line);
    return in;
}
