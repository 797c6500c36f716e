// StrFmt, and the conversions it shares with StrFormat.
#include "fmtimpl.h"

#include <tevbase/format.h>

#include <assert.h>
#include <limits.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ostream>

namespace {

const char kBlanks[] = "                                ";
constexpr long long kBlankRun = sizeof kBlanks - 1;

void put_blanks(std::ostream& os, long long n)
{
    while (n > 0) {
        const long long k = n < kBlankRun ? n : kBlankRun;
        os.write(kBlanks, static_cast<std::streamsize>(k));
        n -= k;
    }
}

// The value of c as a digit in base 8 or 16 (either case), -1 when it is none.
int digit_value(char c, int base)
{
    int v = -1;
    if (c >= '0' && c <= '9')
        v = c - '0';
    else if (c >= 'a' && c <= 'f')
        v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
        v = c - 'A' + 10;
    return v < base ? v : -1;
}

// Expands the escape that follows a backslash at p; returns the position after it.
const char* print_escape(std::ostream& os, const char* p)
{
    static const char names[] = "abfnrtv", controls[] = "\a\b\f\n\r\t\v";
    const char c = *p;
    if (c == '\0') {
        os.put('\\'); // a backslash that ends the text stands for itself
        return p;
    }
    if (const char* name = std::strchr(names, c)) {
        os.put(controls[name - names]);
        return p + 1;
    }
    if (c == 'x' || c == '0') {
        // The escape yields a number, written in the stream's base: "\x41" writes 65.
        const int base = c == 'x' ? 16 : 8;
        ++p;
        int v = 0, n = 0;
        for (; n < 3 && digit_value(*p, base) >= 0; ++n, ++p)
            v = v * base + digit_value(*p, base);
        if (n == 0 && base == 16)
            std::fputs("missing hexadecimal number in escape\n", stderr);
        os << v;
        return p;
    }
    // \" \\ and \c stand for the character itself; any other is reported, then written as text.
    if (c != '"' && c != '\\' && c != 'c')
        std::fprintf(stderr, "\\%c: invalid escape\n", c);
    os.put(c);
    return p + 1;
}

// A run of decimal digits at p (none gives 0); p moves past it. A number beyond INT_MAX is none (-1),
// as StrFormat has it.
int parse_digits(const char*& p)
{
    long long v = 0;
    for (; tevbase_fmt::is_digit(*p); ++p)
        if (v <= INT_MAX)
            v = v * 10 + (*p - '0');
    return v <= INT_MAX ? static_cast<int>(v) : -1;
}

} // namespace

void print_float(std::ostream& os, char conv, int left, int width, int prec, double value)
{
    tevbase_fmt::set_adjustment(os, left != 0);
    if (width >= 0)
        os.width(width);
    if (prec >= 0)
        os.precision(prec);
    switch (conv) {
    case 'E':
        os.setf(std::ios::scientific, std::ios::floatfield);
        os.setf(std::ios::uppercase);
        break;
    case 'G':
        os.unsetf(std::ios::floatfield);
        os.setf(std::ios::uppercase);
        break;
    case 'e':
        os.setf(std::ios::scientific, std::ios::floatfield);
        os.unsetf(std::ios::uppercase);
        break;
    case 'f':
        // Added to the float field: after an 'e', the stream prints fixed|scientific its own way.
        os.setf(std::ios::fixed);
        break;
    case 'g':
        os.unsetf(std::ios::floatfield | std::ios::uppercase);
        break;
    default:
        assert(0);
    }
    os << value;
}

void print_int_arg(std::ostream& os, char conv, long value)
{
    switch (conv) {
    case 'd':
    case 'i':
        // The base stays as the last o, x or X left it.
        os << value;
        break;
    case 'o':
        os.setf(std::ios::oct, std::ios::basefield);
        os << value;
        break;
    case 'u':
        os << static_cast<unsigned long>(value);
        break;
    case 'x':
        os.setf(std::ios::hex, std::ios::basefield);
        os.unsetf(std::ios::uppercase);
        os << static_cast<unsigned long>(value);
        break;
    case 'X':
        os.setf(std::ios::hex, std::ios::basefield);
        os.setf(std::ios::uppercase);
        os << static_cast<unsigned long>(value);
        break;
    default:
        assert(0);
    }
}

namespace tevbase_fmt {

void set_adjustment(std::ostream& os, bool left)
{
    os.setf(left ? std::ios::left : std::ios::right, std::ios::adjustfield);
}

void print_int(std::ostream& os, char conv, bool left, int width, int prec, long value)
{
    set_adjustment(os, left);
    if (prec < 0) {
        if (width < 0) {
            os.width(0);
        } else {
            os.fill(' ');
            os.width(width);
        }
        print_int_arg(os, conv, value);
        return;
    }
    // The '0' fill stays on the stream. The blanks count only width and precision, never the
    // number's own length: callers rely on the fixed column.
    os.fill('0');
    const long long blanks = width < 0 ? 0 : static_cast<long long>(width) - prec;
    if (!left)
        put_blanks(os, blanks);
    os.width(prec);
    print_int_arg(os, conv, value);
    if (left)
        put_blanks(os, blanks);
}

void print_str(std::ostream& os, bool left, int width, int prec, const char* s)
{
    set_adjustment(os, left);
    const long long len = static_cast<long long>(prec < 0 ? std::strlen(s) : strnlen(s, static_cast<size_t>(prec)));
    long long before = 0, after = 0;
    if (width >= 0) {
        if (prec < 0 || left) {
            (left ? after : before) = width - len;
        } else {
            before = static_cast<long long>(width) - prec;
            if (before < 0)
                before = 0;
            after = width - before - len;
        }
    }
    put_blanks(os, before);
    os.write(s, static_cast<std::streamsize>(len));
    put_blanks(os, after);
}

const char* print_text(std::ostream& os, const char* s, char stop)
{
    while (*s != '\0' && *s != stop) {
        const char* run = s;
        while (*s != '\0' && *s != stop && *s != '\\')
            ++s;
        if (s > run)
            os.write(run, s - run);
        if (*s == '\\')
            s = print_escape(os, s + 1);
    }
    return s;
}

void print_escaped(std::ostream& os, const char* s)
{
    if (s != nullptr)
        print_text(os, s, '\0');
}

void report_invalid_directive(char conv)
{
    if (conv == '\0')
        std::fputs("%: invalid directive\n", stderr); // the format ended inside the directive
    else
        std::fprintf(stderr, "%%%c: invalid directive\n", conv);
}

} // namespace tevbase_fmt

int StrFmt(std::ostream& os, const char* format, ...)
{
    using namespace tevbase_fmt;
    if (format == nullptr)
        return -1;

    va_list ap;
    va_start(ap, format);
    // va_end also when an insertion throws (the caller's exception mask).
    struct VaEnd {
        va_list& ap;
        ~VaEnd() { va_end(ap); }
    } va_end_guard{ap};
    int handled = 0;
    for (const char* p = print_text(os, format, '%'); *p != '\0'; p = print_text(os, p, '%')) {
        ++p; // past '%'
        if (*p == '%' || *p == 'b') {
            if (*p == '%')
                os.put('%');
            else
                print_escaped(os, va_arg(ap, const char*));
            ++p;
            ++handled;
            continue;
        }

        bool left = false;
        if (is_flag(*p))
            left = *p++ == '-';
        int width = -1;
        if (*p == '*') {
            width = va_arg(ap, int);
            ++p;
        } else if (is_digit(*p)) {
            width = parse_digits(p);
        }
        int prec = -1;
        if (*p == '.') {
            ++p;
            if (*p == '*') {
                prec = va_arg(ap, int);
                ++p;
            } else {
                prec = parse_digits(p);
            }
        }
        // A negative '*' argument means none.
        if (width < 0)
            width = -1;
        if (prec < 0)
            prec = -1;
        if (is_length_modifier(*p))
            ++p;

        const char conv = *p;
        if (conv != '\0')
            ++p;
        switch (conv) {
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            print_int(os, conv, left, width, prec, va_arg(ap, long));
            break;
        case 'f':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
            print_float(os, conv, left, width, prec, va_arg(ap, double));
            break;
        case 'c':
            set_adjustment(os, left);
            os.put(static_cast<char>(va_arg(ap, int)));
            break;
        case 's': {
            const char* s = va_arg(ap, const char*);
            if (s != nullptr) {
                print_str(os, left, width, prec, s);
            } else {
                set_adjustment(os, left);
                os.setstate(std::ios::badbit);
            }
            break;
        }
        default:
            report_invalid_directive(conv);
            assert(0);
        }
        ++handled;
    }
    return handled;
}
