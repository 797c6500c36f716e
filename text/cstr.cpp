// C string routines.
#include <tevbase/cstr.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t kArrStep = 128;

inline unsigned char uc(char c)
{
    return static_cast<unsigned char>(c);
}

// Case-insensitive difference of two bytes: two letters by their toupper codes, any other pair by
// their plain codes. Bytes are unsigned so that results agree whatever the signedness of char.
inline int ci_diff(unsigned char a, unsigned char b)
{
    if (a == b)
        return 0;
    if (std::isalpha(a) && std::isalpha(b))
        return std::toupper(a) - std::toupper(b);
    return a - b;
}

// Whether the n characters at a and b agree, exactly or case-insensitively.
bool equal(const char* a, const char* b, int n)
{
    return std::memcmp(a, b, static_cast<std::size_t>(n)) == 0;
}

bool ci_equal(const char* a, const char* b, int n)
{
    for (int i = 0; i < n; ++i)
        if (ci_diff(uc(a[i]), uc(b[i])) != 0)
            return false;
    return true;
}

using Equal = bool (*)(const char*, const char*, int);

// 1-based position of the first sublen characters of sub that lie wholly within the slen characters
// of s: a match running off the field does not count.
int field_index(const char* s, int slen, const char* sub, int sublen, Equal same)
{
    if (s == nullptr || slen < 1 || sublen < 0)
        return 0;
    if (sublen == 0)
        return 1;
    if (sub == nullptr)
        return 0;
    for (int p = 0; p <= slen - sublen; ++p)
        if (same(s + p, sub, sublen))
            return p + 1;
    return 0;
}

// 1 when the sublen characters of sub lie at position pos within the slen characters of s.
int field_contains(int pos, const char* s, int slen, const char* sub, int sublen, Equal same)
{
    if (sublen == 0)
        return 1;
    if (s == nullptr || sub == nullptr || sublen < 0 || pos < 1 || pos - 1 >= slen ||
        sublen > slen - (pos - 1))
        return 0;
    return same(s + pos - 1, sub, sublen);
}

// Fortran's case conversions, in place over the first min(*len, hidden_len) characters.
void change_case(char* s, const int* len, int hidden_len, bool upper)
{
    if (s == nullptr || len == nullptr)
        return;
    const int n = std::min(*len, hidden_len);
    for (int i = 0; i < n; ++i) {
        const int c = uc(s[i]);
        if (upper ? std::islower(c) : std::isupper(c))
            s[i] = static_cast<char>(upper ? std::toupper(c) : std::tolower(c));
    }
}

// The order of two texts when a null pointer decides it: 0 for the same pointer, -1 when only a is
// null, 1 when only b is.
inline bool null_order(const char* a, const char* b, int* r)
{
    if (a == b)
        *r = 0;
    else if (a == nullptr)
        *r = -1;
    else if (b == nullptr)
        *r = 1;
    else
        return false;
    return true;
}

// Callers of str_save and friends rely on a bare abort(), unlike SMalloc's message.
char* malloc_or_abort(std::size_t n)
{
    void* p = std::malloc(n);
    if (p == nullptr)
        std::abort();
    return static_cast<char*>(p);
}

// Copies the text of src up to a NUL or n characters into dst, then fills dst up to dstlen with pad.
void copy_padded(char* dst, int dstlen, const char* src, int n, char pad)
{
    if (dst == nullptr || dstlen < 1)
        return;
    std::size_t copied = 0;
    if (src != nullptr && n > 0) {
        copied = strnlen(src, static_cast<std::size_t>(std::min(n, dstlen)));
        std::memmove(dst, src, copied);
    }
    std::memset(dst + copied, pad, static_cast<std::size_t>(dstlen) - copied);
}

} // namespace

extern "C" {

// ---- Null-tolerant wrappers ------------------------------------------------------------------------

int str_len(const char* s)
{
    return s != nullptr ? static_cast<int>(std::strlen(s)) : 0;
}

char* str_cpy(char* dst, const char* src)
{
    if (dst == nullptr)
        return nullptr;
    if (src == nullptr) {
        *dst = '\0';
        return dst;
    }
    return std::strcpy(dst, src);
}

char* str_ncpy(char* dst, const char* src, int n)
{
    if (dst == nullptr)
        return nullptr;
    if (src == nullptr) {
        *dst = '\0';
        return dst;
    }
    n = std::max(n, 0);
    std::strncpy(dst, src, static_cast<std::size_t>(n));
    dst[n] = '\0';
    return dst;
}

char* str_lcpy(char* dst, const char* src, int size)
{
    if (dst == nullptr || src == nullptr || size < 1)
        return dst;
    const std::size_t n = strnlen(src, static_cast<std::size_t>(size) - 1);
    std::memmove(dst, src, n);
    dst[n] = '\0';
    return dst;
}

char* str_cat(char* dst, const char* src)
{
    if (dst != nullptr && src != nullptr)
        std::strcat(dst, src);
    return dst;
}

char* str_ncat(char* dst, const char* src, int n)
{
    if (dst != nullptr && src != nullptr && n > 0)
        std::strncat(dst, src, static_cast<std::size_t>(n));
    return dst;
}

char* str_lcat(char* dst, const char* src, int size)
{
    if (dst == nullptr || src == nullptr || size < 1)
        return dst;
    const std::size_t len = std::strlen(dst);
    const int64_t room = int64_t{size} - 1 - static_cast<int64_t>(len);
    if (room < 0)
        return dst;
    const std::size_t n = strnlen(src, static_cast<std::size_t>(room));
    std::memmove(dst + len, src, n);
    dst[len + n] = '\0';
    return dst;
}

int str_cmp(const char* a, const char* b)
{
    int r;
    if (null_order(a, b, &r))
        return r;
    return std::strcmp(a, b);
}

int str_ncmp(const char* a, const char* b, int n)
{
    int r;
    if (null_order(a, b, &r))
        return r;
    return n > 0 ? std::strncmp(a, b, static_cast<std::size_t>(n)) : 0;
}

int str_icmp(const char* a, const char* b)
{
    int r;
    if (null_order(a, b, &r))
        return r;
    for (;; ++a, ++b) {
        const unsigned char ca = uc(*a), cb = uc(*b);
        if (ca == '\0' || cb == '\0')
            return ca - cb;
        if (const int d = ci_diff(ca, cb))
            return d;
    }
}

int str_nicmp(const char* a, const char* b, int n)
{
    int r;
    if (null_order(a, b, &r))
        return r;
    for (int i = 0; i < n; ++i) {
        const unsigned char ca = uc(a[i]), cb = uc(b[i]);
        if (ca == '\0' || cb == '\0')
            return ca - cb;
        if (const int d = ci_diff(ca, cb))
            return d;
    }
    return 0;
}

char* str_save(const char* s)
{
    const std::size_t n = s != nullptr ? std::strlen(s) : 0;
    char* p = malloc_or_abort(n + 1);
    if (n > 0)
        std::memcpy(p, s, n);
    p[n] = '\0';
    return p;
}

char* str_nsave(const char* s, int n)
{
    const std::size_t len = static_cast<std::size_t>(std::max(n, 0));
    char* p = malloc_or_abort(len + 1);
    if (s != nullptr)
        std::strncpy(p, s, len);
    else
        p[0] = '\0';
    p[len] = '\0';
    return p;
}

void str_free(void* p)
{
    std::free(p);
}

char* str_error(int errnum)
{
    return std::strerror(errnum);
}

// ---- Fixed-length fields ---------------------------------------------------------------------------

int str_length(const char* s, int n)
{
    if (n < 1)
        return n;
    if (s == nullptr)
        return 0;
    while (n > 0 && s[n - 1] == ' ')
        --n;
    return n;
}

int str_index(const char* s, int slen, const char* sub, int sublen)
{
    return field_index(s, slen, sub, sublen, equal);
}

int str_iindex(const char* s, int slen, const char* sub, int sublen)
{
    return field_index(s, slen, sub, sublen, ci_equal);
}

int str_indx(const char* s, const char* sub)
{
    if (s == nullptr || *s == '\0')
        return 0;
    if (sub == nullptr || *sub == '\0')
        return 1;
    const char* hit = std::strstr(s, sub);
    return hit != nullptr ? static_cast<int>(hit - s) + 1 : 0;
}

int str_iindx(const char* s, const char* sub)
{
    if (s == nullptr || *s == '\0')
        return 0;
    if (sub == nullptr || *sub == '\0')
        return 1;
    for (const char* p = s; *p != '\0'; ++p) {
        std::size_t i = 0;
        while (sub[i] != '\0' && ci_diff(uc(p[i]), uc(sub[i])) == 0)
            ++i;
        if (sub[i] == '\0')
            return static_cast<int>(p - s) + 1;
        if (p[i] == '\0')
            return 0; // the rest of s is shorter than sub
    }
    return 0;
}

int str_cont(int pos, const char* s, const char* sub)
{
    if (sub == nullptr || *sub == '\0')
        return 1;
    if (s == nullptr || pos < 1)
        return 0;
    return std::strncmp(s + pos - 1, sub, std::strlen(sub)) == 0;
}

int str_icont(int pos, const char* s, const char* sub)
{
    if (sub == nullptr || *sub == '\0')
        return 1;
    if (s == nullptr || pos < 1)
        return 0;
    // A NUL ending s differs from every character of sub, so the loop stops there.
    for (const char* p = s + pos - 1; *sub != '\0'; ++p, ++sub)
        if (ci_diff(uc(*p), uc(*sub)) != 0)
            return 0;
    return 1;
}

int str_ncont(int pos, const char* s, int slen, const char* sub, int sublen)
{
    return field_contains(pos, s, slen, sub, sublen, equal);
}

int str_nicont(int pos, const char* s, int slen, const char* sub, int sublen)
{
    return field_contains(pos, s, slen, sub, sublen, ci_equal);
}

void str_substr(const char* s, int pos, int len, char* dst, int dstlen)
{
    copy_padded(dst, dstlen, s != nullptr && pos >= 1 ? s + pos - 1 : nullptr, len, ' ');
}

void str_pad(const char* src, int n, char padchar, int dstlen, char* dst)
{
    copy_padded(dst, dstlen, src, n, padchar);
}

void str_lshft(char* s, int n, int k)
{
    if (s == nullptr || n < 1 || k < 1)
        return;
    k = std::min(k, n);
    std::memmove(s, s + k, static_cast<std::size_t>(n - k));
    std::memset(s + (n - k), ' ', static_cast<std::size_t>(k));
}

void str_rshft(char* s, int n, int k)
{
    if (s == nullptr || n < 1 || k < 1)
        return;
    k = std::min(k, n);
    std::memmove(s + k, s, static_cast<std::size_t>(n - k));
    std::memset(s, ' ', static_cast<std::size_t>(k));
}

// Fortran passes the declared length as a hidden trailing argument: an int on older compilers, a
// size_t on newer ones; reading it as int works for both on the targets' calling conventions.
void tolower_(char* s, const int* len, int hidden_len)
{
    change_case(s, len, hidden_len, false);
}

void toupper_(char* s, const int* len, int hidden_len)
{
    change_case(s, len, hidden_len, true);
}

// ---- Tools -----------------------------------------------------------------------------------------

char* str_FindC(const char* s, int (*pred)(int))
{
    if (s == nullptr || pred == nullptr)
        return nullptr;
    for (; *s != '\0'; ++s)
        if (pred(uc(*s)))
            return const_cast<char*>(s);
    return nullptr;
}

char* str_FindCN(const char* s, int (*pred)(int))
{
    return str_FindC(s, pred);
}

char* str_Tok(char** state, char* s, int (*pred)(int))
{
    if (state == nullptr)
        return nullptr;
    if (pred == nullptr) {
        *state = s;
        return nullptr;
    }
    char* p = *state;
    if (p == nullptr)
        return nullptr;
    while (*p != '\0' && pred(uc(*p)))
        ++p;
    char* token = p;
    while (*p != '\0' && !pred(uc(*p)))
        ++p;
    if (*p != '\0')
        *p++ = '\0';
    *state = p;
    return *token != '\0' ? token : nullptr;
}

int str_split(char* s, int (*pred)(int), char** out)
{
    if (out == nullptr)
        return 0;
    char* state;
    str_Tok(&state, s, nullptr);
    int count = 0;
    // A null pred restarts the scan on every call and so yields no token.
    while (char* token = str_Tok(&state, nullptr, pred))
        out[count++] = token;
    out[count] = nullptr;
    return count;
}

void str_fmt_mul_cols(void* base, int n, int size, int (*cmp)(const void*, const void*), int ncols,
                      void (*print)(const void* item), void (*newline)(void))
{
    if (base == nullptr || n < 1 || size < 1)
        return;
    if (cmp != nullptr)
        std::qsort(base, static_cast<std::size_t>(n), static_cast<std::size_t>(size), cmp);
    if (ncols < 1)
        return;
    const char* items = static_cast<const char*>(base);
    const int rows = static_cast<int>((int64_t{n} + ncols - 1) / ncols);
    for (int r = 0; r < rows; ++r) {
        for (int64_t i = r; i < n; i += rows)
            if (print != nullptr)
                print(items + static_cast<std::size_t>(i) * static_cast<std::size_t>(size));
        if (newline != nullptr)
            newline();
    }
}

// ---- Growing text buffer ---------------------------------------------------------------------------

void str_arr_init(str_arr_t* a)
{
    if (a == nullptr)
        return;
    a->buf = a->end = nullptr;
    a->size = 0;
}

char* str_arr_cat(str_arr_t* a, const char* s)
{
    if (a == nullptr)
        return nullptr;
    if (a->size == 0) {
        a->buf = a->end = malloc_or_abort(kArrStep);
        a->buf[0] = '\0';
        a->size = kArrStep;
    }
    if (s == nullptr)
        return a->buf;

    const std::size_t used = static_cast<std::size_t>(a->end - a->buf);
    const std::size_t len = std::strlen(s);
    const uint64_t need = uint64_t{used} + len; // size must end above this
    if (static_cast<uint64_t>(a->size) <= need) {
        // Whole steps while size <= need.
        const uint64_t size = a->size + ((need - a->size) / kArrStep + 1) * kArrStep;
        if (size > INT32_MAX)
            std::abort();
        // s may be our own text, which realloc can move.
        const uintptr_t offset = reinterpret_cast<uintptr_t>(s) - reinterpret_cast<uintptr_t>(a->buf);
        const bool inside = offset < static_cast<uintptr_t>(a->size);
        char* buf = static_cast<char*>(std::realloc(a->buf, static_cast<std::size_t>(size)));
        if (buf == nullptr)
            std::abort();
        if (inside)
            s = buf + offset;
        a->buf = buf;
        a->end = buf + used;
        a->size = static_cast<int32_t>(size);
    }
    std::memmove(a->end, s, len + 1);
    a->end += len;
    return a->buf;
}

char* str_arr_cpy(str_arr_t* a, const char* s)
{
    if (a == nullptr)
        return nullptr;
    a->end = a->buf;
    return str_arr_cat(a, s);
}

char* str_arr_str(const str_arr_t* a)
{
    return a != nullptr ? a->buf : nullptr;
}

void str_arr_delete(str_arr_t* a)
{
    if (a != nullptr)
        std::free(a->buf);
}

} // extern "C"
