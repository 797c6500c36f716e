// Number conversion with engineering scale suffixes.
#include <tevbase/numconv.h>
#include <tevbase/textutil.h>

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <istream>
#include <limits>
#include <type_traits>

namespace {

bool is_digit(int c)
{
    return c >= '0' && c <= '9';
}

bool is_space(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

int16_t count(const char* end, const char* start)
{
    return static_cast<int16_t>(end - start);
}

// ---- String parsers ------------------------------------------------------------------------------

// Factors of the string parsers, in the precision of the result.
template <class Real> struct Factors;
template <> struct Factors<double> {
    static constexpr double y = 1e-24, z = 1e-21, a = 1e-18, f = 1e-15, p = 1e-12, n = 1e-9;
    static constexpr double u = 0x1.0c6f7a0b5ed92p-20; // 1.000000000000001e-06, five ulps above 1e-6
    static constexpr double m = 1e-3, percent = 0.01, k = 1e3, meg = 1e6, g = 1e9, t = 1e12, peta = 1e15;
    static constexpr double zetta = 1e21, yotta = 1e24, ten = 10.0, tenth = 0.1;
};
template <> struct Factors<float> {
    static constexpr float a = 1e-18f, f = 1e-15f, p = 1e-12f, n = 1e-9f, u = 1e-6f, m = 1e-3f;
    static constexpr float k = 1e3f, meg = 1e6f, g = 1e9f, t = 1e12f, ten = 10.0f, tenth = 0.1f;
};

unsigned long long magnitude(long long e)
{
    return e < 0 ? 0ull - static_cast<unsigned long long>(e) : static_cast<unsigned long long>(e);
}

// step^steps by repeated multiplication. The loop stops once the product is 0 or infinite: further
// steps would not change it.
template <class Real> Real repeated_product(unsigned long long steps, Real step)
{
    Real product = 1;
    for (; steps != 0 && product != 0 && !std::isinf(product); --steps)
        product *= step;
    return product;
}

// The value of the digits [first, last), summed from the least significant upward with a fused
// multiply-add; *power becomes 10^(last - first) by repeated multiplication.
template <class Real> Real digit_sum(const char* first, const char* last, Real* power)
{
    Real sum = 0, p = 1;
    for (const char* d = last; d != first;) {
        --d;
        sum = std::fma(static_cast<Real>(*d - '0'), p, sum);
        p *= 10;
    }
    *power = p;
    return sum;
}

// A run of digits at *s, consumed whole. It counts (returns true) when it has 1 to 32 digits.
bool digit_run(const char** s, const char** first, const char** last)
{
    *first = *s;
    while (is_digit(**s))
        ++*s;
    *last = *s;
    return *last != *first && *last - *first <= 32;
}

struct Suffix {
    bool ok;
    int used; // characters consumed
};

// The exponent after a D or E at s: str_toint of what follows (blanks and a sign allowed).
template <class Real> Suffix exponent(const char* s, Real* factor)
{
    int e;
    const int16_t n = str_toint(s + 1, &e);
    if (n == 0)
        return {false, 0};
    *factor = repeated_product(magnitude(e), e < 0 ? Factors<Real>::tenth : Factors<Real>::ten);
    return {true, 1 + n};
}

// Engineering dialect, case-insensitive; MEG after M, no MIL.
template <class Real> Suffix engineering_suffix(const char* s, Real* factor)
{
    using F = Factors<Real>;
    const Real* fixed = nullptr;
    switch (std::toupper(static_cast<unsigned char>(*s))) {
    case 'A': fixed = &F::a; break;
    case 'F': fixed = &F::f; break;
    case 'P': fixed = &F::p; break;
    case 'N': fixed = &F::n; break;
    case 'U': fixed = &F::u; break;
    case 'K': fixed = &F::k; break;
    case 'G': fixed = &F::g; break;
    case 'T': fixed = &F::t; break;
    case 'M':
        if (std::toupper(static_cast<unsigned char>(s[1])) == 'E' &&
            std::toupper(static_cast<unsigned char>(s[2])) == 'G') {
            *factor = F::meg;
            return {true, 3};
        }
        *factor = F::m;
        return {true, 1};
    case 'D':
    case 'E':
        return exponent(s, factor);
    default:
        *factor = 1;
        return {true, 0};
    }
    *factor = *fixed;
    return {true, 1};
}

// SI dialect, case-sensitive.
Suffix si_suffix(const char* s, double* factor)
{
    using F = Factors<double>;
    switch (*s) {
    case 'y': *factor = F::y; break;
    case 'z': *factor = F::z; break;
    case 'a': *factor = F::a; break;
    case 'f': *factor = F::f; break;
    case 'p': *factor = F::p; break;
    case 'n': *factor = F::n; break;
    case 'u': *factor = F::u; break;
    case 'm': *factor = F::m; break;
    case '%': *factor = F::percent; break;
    case 'K':
    case 'k': *factor = F::k; break;
    case 'M': *factor = F::meg; break;
    case 'G': *factor = F::g; break;
    case 'T': *factor = F::t; break;
    case 'P': *factor = F::peta; break;
    case 'Z': *factor = F::zetta; break;
    case 'Y': *factor = F::yotta; break;
    case 'd':
    case 'D':
    case 'e':
    case 'E':
        return exponent(s, factor);
    default:
        *factor = 1;
        return {true, 0};
    }
    return {true, 1};
}

template <class Real, class SuffixReader> int16_t parse_real(const char* s, Real* value, SuffixReader suffix)
{
    if (s == nullptr)
        return 0;
    const char* p = s;
    while (is_space(*p))
        ++p;
    if (*p == '\0')
        return 0;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-')
        ++p;
    if (std::strcmp(p, "inf") == 0 || std::strcmp(p, "min") == 0) {
        const Real special = *p == 'i' ? std::numeric_limits<Real>::max() : std::numeric_limits<Real>::min();
        *value = negative ? -special : special;
        return count(p + 3, s);
    }

    Real number = 0, power;
    const char *first, *last;
    bool digits = digit_run(&p, &first, &last);
    if (digits)
        number = digit_sum(first, last, &power);
    if (*p == '.') {
        ++p;
        if (digit_run(&p, &first, &last)) {
            const Real fraction = digit_sum(first, last, &power);
            number = number + fraction / power;
            digits = true;
        }
    }
    if (!digits)
        return 0;

    Real factor = 1;
    const Suffix sfx = suffix(p, &factor);
    if (!sfx.ok)
        return 0;
    number = number * factor;
    *value = negative ? -number : number;
    return count(p + sfx.used, s);
}

// ---- Stream readers ------------------------------------------------------------------------------

// Character access that stops at the end of the stream without setting failbit: eofbit is set once
// and the stream is not touched again (a further peek would fail it).
class Input {
public:
    explicit Input(std::istream& is) : is_(is) {}
    int Peek()
    {
        if (end_)
            return EOF;
        const std::istream::int_type c = is_.peek();
        if (std::istream::traits_type::eq_int_type(c, std::istream::traits_type::eof())) {
            end_ = true;
            return EOF;
        }
        return static_cast<unsigned char>(std::istream::traits_type::to_char_type(c));
    }
    // Consumes the character that Peek returned.
    char Take() { return std::istream::traits_type::to_char_type(is_.get()); }
    std::istream& Stream() { return is_; }

private:
    std::istream& is_;
    bool end_ = false;
};

// strtod in the C locale: the decimal point is '.' whatever the program's locale.
double c_strtod(const char* text)
{
    static const locale_t c_locale = newlocale(LC_NUMERIC_MASK, "C", locale_t(0));
    return c_locale != locale_t(0) ? strtod_l(text, nullptr, c_locale) : std::strtod(text, nullptr);
}

// The exponent after D or E: formatted input of a sign or digit, then up to 30 more digits. The
// factor is 10^|n| by repeated multiplication, inverted for negative n. Success clears the stream.
double stream_exponent(Input& in)
{
    std::istream& is = in.Stream();
    char c;
    if (!(is >> c))
        return 1;
    if (!is_digit(c) && c != '+' && c != '-') {
        is.setstate(std::ios::failbit);
        return 1;
    }
    char text[32] = {c};
    for (int n = 1; n <= 30 && is_digit(in.Peek()); ++n)
        text[n] = in.Take();
    const long e = std::strtol(text, nullptr, 10);
    double factor = repeated_product(magnitude(e), 10.0);
    if (e < 0)
        factor = 1 / factor;
    is.clear();
    return factor;
}

// Engineering dialect, case-insensitive, exact micro, MEG and MIL.
double engineering_stream_suffix(Input& in)
{
    const int c = in.Peek();
    switch (c == EOF ? EOF : std::toupper(c)) {
    case 'A': in.Take(); return 1e-18;
    case 'F': in.Take(); return 1e-15;
    case 'P': in.Take(); return 1e-12;
    case 'N': in.Take(); return 1e-9;
    case 'U': in.Take(); return 1e-6;
    case 'K': in.Take(); return 1e3;
    case 'G': in.Take(); return 1e9;
    case 'T': in.Take(); return 1e12;
    case 'D':
    case 'E':
        in.Take();
        return stream_exponent(in);
    case 'M': {
        in.Take();
        const int c1 = in.Peek();
        const int u1 = c1 == EOF ? EOF : std::toupper(c1);
        if (u1 != 'E' && u1 != 'I')
            return 1e-3;
        in.Take();
        const int c2 = in.Peek();
        const int u2 = c2 == EOF ? EOF : std::toupper(c2);
        if (u2 != 'G' && u2 != 'L')
            return 1e-3; // "ME" or "MI": milli, with the E or I consumed
        in.Take();
        if (u1 == 'E' && u2 == 'G')
            return 1e6;
        if (u1 == 'I' && u2 == 'L')
            return 2.54e-5;
        in.Stream().setstate(std::ios::failbit); // MEL, MIG
        return 1;
    }
    default:
        return 1;
    }
}

// SI dialect, case-sensitive, exact micro.
double si_stream_suffix(Input& in)
{
    double factor;
    switch (in.Peek()) {
    case 'y': factor = 1e-24; break;
    case 'z': factor = 1e-21; break;
    case 'a': factor = 1e-18; break;
    case 'f': factor = 1e-15; break;
    case 'p': factor = 1e-12; break;
    case 'n': factor = 1e-9; break;
    case 'u': factor = 1e-6; break;
    case 'm': factor = 1e-3; break;
    case '%': factor = 0.01; break;
    case 'K':
    case 'k': factor = 1e3; break;
    case 'M': factor = 1e6; break;
    case 'G': factor = 1e9; break;
    case 'T': factor = 1e12; break;
    case 'P': factor = 1e15; break;
    case 'Z': factor = 1e21; break;
    case 'Y': factor = 1e24; break;
    case 'd':
    case 'D':
    case 'e':
    case 'E':
        in.Take();
        return stream_exponent(in);
    default:
        return 1;
    }
    in.Take();
    return factor;
}

template <class SuffixReader> std::istream& get_real(std::istream& is, double& value, SuffixReader suffix)
{
    char c;
    if (!(is >> c))
        return is;
    double sign = 1;
    if (c == '-' || c == '+') {
        sign = c == '-' ? -1 : 1;
    } else if (is_digit(c) || c == '.') {
        is.putback(c);
    } else {
        // Two characters can never spell "inf" or "min": the check fails every time (kept, as the
        // characters it consumes are part of the behaviour).
        is.putback(c);
        char word[3];
        is.get(word, sizeof word);
        is.setstate(std::ios::failbit);
        return is;
    }

    Input in(is);
    char text[128];
    const std::size_t room = sizeof text - 1;
    std::size_t len = 0;
    bool digits = false, fraction = false;
    while (is_digit(in.Peek())) {
        const char d = in.Take();
        digits = true;
        if (len < room)
            text[len++] = d;
    }
    if (!digits)
        text[len++] = '0';
    if (in.Peek() == '.') {
        in.Take();
        if (len < room)
            text[len++] = '.';
    }
    while (is_digit(in.Peek())) {
        const char d = in.Take();
        fraction = true;
        if (len < room)
            text[len++] = d;
    }
    if (!digits && !fraction) {
        is.setstate(std::ios::failbit);
        return is;
    }
    text[len] = '\0';
    const double number = c_strtod(text);
    const double factor = suffix(in);
    if (is.fail())
        return is;
    value = sign * number * factor;
    return is;
}

template <class SuffixReader> std::istream& get_float(std::istream& is, float& value, SuffixReader suffix)
{
    double d;
    if (!get_real(is, d, suffix).fail())
        value = static_cast<float>(d);
    return is;
}

// ---- Integer writers -----------------------------------------------------------------------------

// Pads the text [p, end) on the left with fill to width characters; a NUL fill pads nothing.
char* pad(char* p, const char* end, int width, char fill)
{
    if (fill != '\0')
        while (end - p < width)
            *--p = fill;
    return p;
}

template <class U> char* write_decimal(char* buf, int size, U magnitude, bool negative, int width, char fill)
{
    char* const end = buf + size - 1;
    *end = '\0';
    char* p = end;
    do {
        *--p = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (negative)
        *--p = '-';
    return pad(p, end, width, fill);
}

template <class S> char* write_signed(char* buf, int size, S value, int width, char fill)
{
    using U = typename std::make_unsigned<S>::type;
    const U magnitude = value < 0 ? U(0) - static_cast<U>(value) : static_cast<U>(value);
    return write_decimal(buf, size, magnitude, value < 0, width, fill);
}

template <class S> char* write_radix(char* buf, int size, S value, int width, char fill, int radix)
{
    unsigned bits;
    const char* prefix;
    switch (radix) {
    case 2: bits = 1, prefix = "0b"; break;
    case 8: bits = 3, prefix = "0"; break;
    case 16: bits = 4, prefix = "0x"; break;
    default: std::abort();
    }
    using U = typename std::make_unsigned<S>::type;
    U v = static_cast<U>(value);
    char* const end = buf + size - 1;
    *end = '\0';
    char* p = end;
    do {
        *--p = "0123456789abcdef"[v & ((1u << bits) - 1)];
        v >>= bits;
    } while (v != 0);
    p = pad(p, end, width, fill);
    for (const char* q = prefix + std::strlen(prefix); q != prefix;)
        *--p = *--q;
    return p;
}

} // namespace

extern "C" {

int16_t str_toint(const char* s, int* value)
{
    if (s == nullptr)
        return 0;
    const char* p = s;
    while (is_space(*p))
        ++p;
    if (*p == '\0')
        return 0;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-')
        ++p;
    const char* digits = p;
    uint32_t sum = 0; // wraps beyond 10 digits, on every target
    for (; is_digit(*p); ++p) {
        if (p - digits == 16)
            return 0;
        sum = sum * 10 + static_cast<uint32_t>(*p - '0');
    }
    if (p == digits)
        return 0;
    *value = static_cast<int32_t>(negative ? 0u - sum : sum);
    return count(p, s);
}

long str_tolong(const char* s)
{
    return s != nullptr ? std::strtol(s, nullptr, 10) : 0;
}

int16_t str_tofloat(const char* s, float* value)
{
    return parse_real(s, value, engineering_suffix<float>);
}

int16_t str_tofloat_(const char* s, float* value)
{
    return str_tofloat(s, value);
}

int16_t str_todouble(const char* s, double* value)
{
    return parse_real(s, value, engineering_suffix<double>);
}

int16_t str_ctodouble(const char* s, double* value)
{
    return parse_real(s, value, si_suffix);
}

char* str_int2str10(char* buf, int size, int value, int width, char fill)
{
    return write_signed(buf, size, value, width, fill);
}

char* str_long2str10(char* buf, int size, long value, int width, char fill)
{
    return write_signed(buf, size, value, width, fill);
}

char* str_longlong2str10(char* buf, int size, long long value, int width, char fill)
{
    return write_signed(buf, size, value, width, fill);
}

char* str_uint2str10(char* buf, int size, unsigned int value, int width, char fill)
{
    return write_decimal(buf, size, value, false, width, fill);
}

char* str_ulong2str10(char* buf, int size, unsigned long value, int width, char fill)
{
    return write_decimal(buf, size, value, false, width, fill);
}

char* str_ulonglong2str10(char* buf, int size, unsigned long long value, int width, char fill)
{
    return write_decimal(buf, size, value, false, width, fill);
}

char* str_int2strradix(char* buf, int size, int value, int width, char fill, int radix)
{
    return write_radix(buf, size, value, width, fill, radix);
}

char* str_long2strradix(char* buf, int size, long value, int width, char fill, int radix)
{
    return write_radix(buf, size, value, width, fill, radix);
}

char* str_longlong2strradix(char* buf, int size, long long value, int width, char fill, int radix)
{
    return write_radix(buf, size, value, width, fill, radix);
}

char* str_tosc_r(char* buf, double value)
{
    static const char* const scale[] = {"A", "F", "P", "N", "U", "M", "_", "K", "ME", "G", "T"};
    if (!std::isfinite(value))
        return buf;
    const char* sign = value < 0 ? "-" : "";
    const double magnitude = std::fabs(value);
    int e = 0;
    unsigned n = 0;
    if (magnitude != 0) {
        // The small addition keeps exact powers of ten from falling a decade short.
        const double decade = std::floor(std::log10(magnitude) + 1e-10);
        if (decade < -18 || decade > 12)
            return buf;
        e = static_cast<int>(decade);
        // The mantissa lies in [1, 10]: n has three digits, or is 1000 when it rounds up (not
        // renormalised: 9.9996 gives "10_00"). The text has at most 7 characters.
        n = static_cast<unsigned>(mth_round(magnitude / std::pow(10.0, e) * 100));
    }
    const char* entry = scale[(e + 18) / 3];
    char text[48];
    switch ((e + 18) % 3) {
    case 0: std::snprintf(text, sizeof text, "%s%1.1u%s%2.2u", sign, n / 100, entry, n % 100); break;
    case 1: std::snprintf(text, sizeof text, "%s%2.2u%s%1.1u", sign, n / 10, entry, n % 10); break;
    default: std::snprintf(text, sizeof text, "%s%3.3u%s", sign, n, entry); break;
    }
    const std::size_t len = std::min<std::size_t>(std::strlen(text), 7);
    std::memcpy(buf, text, len);
    buf[len] = '\0';
    return buf;
}

char* str_tosc(double value)
{
    static char buf[8];
    return str_tosc_r(buf, value);
}

} // extern "C"

std::istream& GetDouble(std::istream& is, double& value)
{
    return get_real(is, value, engineering_stream_suffix);
}

std::istream& GetFloat(std::istream& is, float& value)
{
    return get_float(is, value, engineering_stream_suffix);
}

std::istream& GetCDouble(std::istream& is, double& value)
{
    return get_real(is, value, si_stream_suffix);
}

std::istream& GetCFloat(std::istream& is, float& value)
{
    return get_float(is, value, si_stream_suffix);
}
