// String_t: reference-counted text; StrCnt: a string with a counter.
#ifndef TEVBASE_STRING_H
#define TEVBASE_STRING_H

#include <stdint.h>

#include <cstddef>
#include <cstring>
#include <iosfwd>

#include <tevbase/config.h>

// Reference-counted text. Copies share one representation; every change gives the string its own,
// exactly sized array first (Reserve excepted). Null data is the empty string: it has length 0 and
// prints as nothing, yet differs from "" in == and != against a character pointer.
//
// The count is not atomic: never copy or destroy the same String_t (or a container holding one) from
// two threads at once; hand text to another thread as a fresh copy.
class TEVBASE_API String_t {
public:
    // The shared representation, allocated from a pool of 8192-byte blocks.
    struct TEVBASE_API Srep {
        char* data;     // new[] array with the text and its NUL, or null
        uint32_t count; // handles sharing this representation

        static void* operator new(std::size_t size);
        static void operator delete(void* p, std::size_t size);
    };

    String_t();
    // A copy of s; null gives null data.
    String_t(const char* s);
    // The first min(n, strlen(s)) characters of s; null s or n == 0 gives null data.
    String_t(const char* s, unsigned n);
    // An empty, non-null text with room for n characters.
    explicit String_t(unsigned n);
    String_t(const String_t& other) noexcept : rep_(other.rep_) { ++rep_->count; }
    ~String_t()
    {
        if (--rep_->count == 0)
            Free(rep_);
    }

    String_t& operator=(const String_t& other) noexcept;
    // s must not point into this string's own text.
    String_t& operator=(const char* s);
    // Appends s; null changes nothing. Throws std::bad_alloc when the length overflows 32 bits.
    String_t& operator+=(const char* s);
    String_t& operator+=(const String_t& s) { return *this += s.Chars(); }
    // Puts s in front; null changes nothing.
    String_t& Prepend(const char* s);
    // Replaces the array by an empty one with room for n characters and returns it for the caller to
    // fill. Writes through a shared representation: every copy loses its text too. Use it only on a
    // string held alone.
    char* Reserve(unsigned n);
    // A new[] copy of the text for the caller to delete[]; null for null data.
    char* Save() const;

    // Characters from..to inclusive, cut at the end of the text. from must lie within the text.
    String_t SubStr(unsigned from, unsigned to) const;
    // Without leading and trailing isspace characters; an empty or all-blank text gives null data.
    String_t Trim() const;
    // Without leading blanks, but the last character is never removed (" " stays " ").
    String_t TrimLeft() const;
    // Without trailing blanks; an empty or all-blank text gives null data.
    String_t TrimRight() const;
    String_t Toupper() const;
    String_t Tolower() const;
    // Every `from` replaced by `to`.
    String_t Subst(char from, char to) const;
    // Every character found in `set` replaced by `to`.
    String_t Subst(const char* set, char to) const;

    // Null data equals only a null pointer; "" equals only non-null empty text.
    bool operator==(const char* s) const
    {
        if (rep_->data == nullptr || s == nullptr)
            return rep_->data == s;
        return std::strcmp(rep_->data, s) == 0;
    }
    bool operator!=(const char* s) const { return !(*this == s); }

    // The text, or null for null data.
    const char* Chars() const { return rep_->data; }
    // The text, or "" for null data.
    const char* Text() const { return rep_->data != nullptr ? rep_->data : ""; }
    unsigned Length() const { return rep_->data != nullptr ? static_cast<unsigned>(std::strlen(rep_->data)) : 0; }
    bool IsNull() const { return rep_->data == nullptr; }
    // strcmp order with null data as "".
    int Compare(const String_t& other) const { return std::strcmp(Text(), other.Text()); }

    void swap(String_t& other) noexcept
    {
        Srep* r = rep_;
        rep_ = other.rep_;
        other.rep_ = r;
    }

    // Reads up to the delimiter string (consumed, not stored). At the end of the stream, what was read
    // is kept and the stream cleared; nothing read gives null data and a failed stream. An empty line
    // gives "". A null or empty delimiter reads the rest of the stream.
    static std::istream& Getline(std::istream& in, String_t& out, const char* delim);

private:
    static void Free(Srep* rep) noexcept;
    // Stores data (a new[] array) as the text, giving this handle a representation of its own.
    void Adopt(char* data);

    Srep* rep_;
};

// Texts compare as texts: null data equals "".
inline bool operator==(const String_t& a, const String_t& b) { return a.Compare(b) == 0; }
inline bool operator!=(const String_t& a, const String_t& b) { return a.Compare(b) != 0; }
inline bool operator<(const String_t& a, const String_t& b) { return a.Compare(b) < 0; }

// Concatenation into a new string; null data only when both parts are null.
TEVBASE_API String_t operator+(const String_t& a, const char* b);
inline String_t operator+(const String_t& a, const String_t& b) { return a + b.Chars(); }

// Inserts the text as a character string is inserted (width and fill apply); null data inserts "".
TEVBASE_API std::ostream& operator<<(std::ostream& os, const String_t& s);
// Reads one blank-delimited word. A word that ends the stream leaves the stream good.
TEVBASE_API std::istream& operator>>(std::istream& is, String_t& s);

// A string with a counter: the element of the word-count table.
struct TEVBASE_API StrCnt {
    String_t str;
    int32_t count;

    StrCnt() : count(0) {}
    StrCnt(const String_t& s) : str(s), count(0) {}
};

#endif
