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

int uc(char c)
{
    return static_cast<unsigned char>(c);
}

int upper(int c)
{
    return c == EOF ? EOF : std::toupper(c);
}

int16_t count(const char* end, const char* start)
{
    return static_cast<int16_t>(end - start);
}

// Skips leading blanks and takes an optional sign; null when s is null or holds only blanks.
const char* skip_blanks_and_sign(const char* s, bool* negative)
{
    if (s == nullptr)
        return nullptr;
    while (is_space(*s))
        ++s;
    if (*s == '\0')
        return nullptr;
    *negative = *s == '-';
    if (*s == '+' || *s == '-')
        ++s;
    return s;
}

// ---- Suffix letters, shared by the string parsers and the stream readers -----------------------

// d, D, e and E start an exponent in both dialects.
bool is_exponent(int c)
{
    return c == 'd' || c == 'D' || c == 'e' || c == 'E';
}

// The factor of a scale letter of the engineering dialect (case-insensitive), 0 when c is none. M is
// milli; the callers look for MEG (and MIL) behind it.
double engineering_factor(int c)
{
    switch (upper(c)) {
    case 'A': return 1e-18;
    case 'F': return 1e-15;
    case 'P': return 1e-12;
    case 'N': return 1e-9;
    case 'U': return 1e-6;
    case 'M': return 1e-3;
    case 'K': return 1e3;
    case 'G': return 1e9;
    case 'T': return 1e12;
    default: return 0;
    }
}

// The factor of a scale letter of the SI dialect (case-sensitive), 0 when c is none.
double si_factor(int c)
{
    switch (c) {
    case 'y': return 1e-24;
    case 'z': return 1e-21;
    case 'a': return 1e-18;
    case 'f': return 1e-15;
    case 'p': return 1e-12;
    case 'n': return 1e-9;
    case 'u': return 1e-6;
    case 'm': return 1e-3;
    case '%': return 0.01;
    case 'K':
    case 'k': return 1e3;
    case 'M': return 1e6;
    case 'G': return 1e9;
    case 'T': return 1e12;
    case 'P': return 1e15;
    case 'Z': return 1e21;
    case 'Y': return 1e24;
    default: return 0;
    }
}

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

// ---- String parsers ------------------------------------------------------------------------------

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
    *factor = repeated_product(magnitude(e), static_cast<Real>(e < 0 ? 0.1 : 10.0));
    return {true, 1 + n};
}

// The string parsers' micro: 1.000000000000001e-06, five ulps above the stream readers' exact 1e-6
// (stored results depend on it).
constexpr double kStringMicro = 0x1.0c6f7a0b5ed92p-20;

// A scale letter's factor f (0: no letter, factor 1, nothing consumed) in the result's precision: the
// float of each factor is the float nearest its value.
template <class Real> Suffix scale_letter(double f, Real* factor)
{
    *factor = f != 0 ? static_cast<Real>(f) : 1;
    return {true, f != 0 ? 1 : 0};
}

// Engineering dialect: MEG after M, no MIL.
template <class Real> Suffix engineering_suffix(const char* s, Real* factor)
{
    if (is_exponent(*s))
        return exponent(s, factor);
    if (upper(uc(s[0])) == 'M' && upper(uc(s[1])) == 'E' && upper(uc(s[2])) == 'G') {
        *factor = static_cast<Real>(1e6);
        return {true, 3};
    }
    return scale_letter(upper(uc(*s)) == 'U' ? kStringMicro : engineering_factor(uc(*s)), factor);
}

Suffix si_suffix(const char* s, double* factor)
{
    if (is_exponent(*s))
        return exponent(s, factor);
    return scale_letter(*s == 'u' ? kStringMicro : si_factor(uc(*s)), factor);
}

template <class Real, class SuffixReader> int16_t parse_real(const char* s, Real* value, SuffixReader suffix)
{
    bool negative;
    const char* p = skip_blanks_and_sign(s, &negative);
    if (p == nullptr)
        return 0;
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

// The factor of the suffix at the stream's next character: an exponent, or a scale letter of factor
// f (consumed), or 1 when f is 0 (nothing consumed).
double stream_suffix(Input& in, double f)
{
    if (is_exponent(in.Peek())) {
        in.Take();
        return stream_exponent(in);
    }
    if (f == 0)
        return 1;
    in.Take();
    return f;
}

// Engineering dialect: after M, MEG or MIL.
double engineering_stream_suffix(Input& in)
{
    if (upper(in.Peek()) != 'M')
        return stream_suffix(in, engineering_factor(in.Peek()));
    in.Take();
    const int c1 = upper(in.Peek());
    if (c1 != 'E' && c1 != 'I')
        return 1e-3;
    in.Take();
    const int c2 = upper(in.Peek());
    if (c2 != 'G' && c2 != 'L')
        return 1e-3; // "ME" or "MI": milli, with the E or I consumed
    in.Take();
    if (c1 == 'E' && c2 == 'G')
        return 1e6;
    if (c1 == 'I' && c2 == 'L')
        return 2.54e-5;
    in.Stream().setstate(std::ios::failbit); // MEL, MIG
    return 1;
}

double si_stream_suffix(Input& in)
{
    return stream_suffix(in, si_factor(in.Peek()));
}

// Reads a run of digits into text while it has room (the rest are read and dropped); true when there
// was at least one.
bool read_digits(Input& in, char* text, std::size_t* len, std::size_t room)
{
    bool any = false;
    for (; is_digit(in.Peek()); any = true) {
        const char d = in.Take();
        if (*len < room)
            text[(*len)++] = d;
    }
    return any;
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
    const bool digits = read_digits(in, text, &len, room);
    if (!digits)
        text[len++] = '0';
    if (in.Peek() == '.') {
        in.Take();
        if (len < room)
            text[len++] = '.';
    }
    const bool fraction = read_digits(in, text, &len, room);
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

// The digits of v in base (lower-case letters past 9), written backwards in front of end.
template <class U> char* put_digits(char* end, U v, unsigned base)
{
    char* p = end;
    do {
        *--p = "0123456789abcdef"[v % base];
        v /= base;
    } while (v != 0);
    return p;
}

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
    char* p = put_digits(end, magnitude, 10);
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

// The bits of value as unsigned digits, padded to width, then the radix's prefix.
template <class S> char* write_radix(char* buf, int size, S value, int width, char fill, int radix)
{
    const char* prefix;
    switch (radix) {
    case 2: prefix = "0b"; break;
    case 8: prefix = "0"; break;
    case 16: prefix = "0x"; break;
    default: std::abort();
    }
    char* const end = buf + size - 1;
    *end = '\0';
    using U = typename std::make_unsigned<S>::type;
    char* p = pad(put_digits(end, static_cast<U>(value), static_cast<unsigned>(radix)), end, width, fill);
    for (const char* q = prefix + std::strlen(prefix); q != prefix;)
        *--p = *--q;
    return p;
}

} // namespace

extern "C" {

int16_t str_toint(const char* s, int* value)
{
    bool negative;
    const char* p = skip_blanks_and_sign(s, &negative);
    if (p == nullptr)
        return 0;
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
