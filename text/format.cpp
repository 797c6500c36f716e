// StrFormat: formatting of text arguments in the manner of the shell's printf.
#include "fmtimpl.h"

#include <tevbase/format.h>

#include <assert.h>
#include <errno.h>
#include <limits.h>
#include <stddef.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <ostream>

namespace {

// The arguments still to be used. Past the end every directive gets the empty text.
struct Args {
    char** argv;
    int argc;
    int used;

    const char* Next() { return used < argc ? argv[used++] : ""; }
};

// Converts text with convert(text, &end), reporting on standard error what a caller must see: the
// error of the conversion itself (perror), or text that holds no number. Null and empty texts are 0.
template <class T, class F> T checked(const char* text, F convert)
{
    if (text == nullptr || *text == '\0')
        return 0;
    char* end;
    errno = 0;
    const T v = convert(text, &end);
    if (errno != 0)
        std::perror(text);
    else if (end == text)
        std::fprintf(stderr, "%s: expected a numeric value\n", text);
    return v;
}

// Past a width or precision: a '*' or a run of digits.
const char* skip_count(const char* p)
{
    if (*p == '*')
        return p + 1;
    while (tevbase_fmt::is_digit(*p))
        ++p;
    return p;
}

long checked_long(const char* text)
{
    return checked<long>(text, [](const char* s, char** end) { return std::strtol(s, end, 10); });
}

unsigned long checked_ulong(const char* text)
{
    return checked<unsigned long>(text, [](const char* s, char** end) { return std::strtoul(s, end, 10); });
}

double checked_double(const char* text)
{
    return checked<double>(text, [](const char* s, char** end) { return std::strtod(s, end); });
}

// A width or precision from text; what is no non-negative int ("-5" through strtoul) is none.
int checked_count(const char* text)
{
    const unsigned long v = checked_ulong(text);
    return v <= INT_MAX ? static_cast<int>(v) : -1;
}

} // namespace

// Formats one directive. direc holds its text from the '%' to the conversion character, which is
// direc[length - 1] (a NUL when the format ended inside the directive); arg is its argument.
void print_direc(std::ostream& os, const char* direc, size_t length, int left, int width, int prec,
                 const char* arg)
{
    using namespace tevbase_fmt;
    const char conv = direc[length - 1];
    switch (conv) {
    case 'd':
    case 'i':
    case 'o':
        print_int(os, conv, left != 0, width, prec, checked_long(arg));
        break;
    case 'u':
    case 'x':
    case 'X':
        print_int(os, conv, left != 0, width, prec, static_cast<long>(checked_ulong(arg)));
        break;
    case 'f':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
        print_float(os, conv, left, width, prec, checked_double(arg));
        break;
    case 'c':
        set_adjustment(os, left != 0);
        if (arg != nullptr && *arg != '\0')
            os.put(*arg);
        break;
    case 's':
        print_str(os, left != 0, width, prec, arg != nullptr ? arg : "(nil)");
        break;
    default:
        report_invalid_directive(conv);
        assert(0);
    }
}

int StrFormat(std::ostream& os, const char* format, int argc, char** argv)
{
    using namespace tevbase_fmt;
    if (format == nullptr)
        return -1;
    Args args{argv, argv != nullptr && argc > 0 ? argc : 0, 0};

    for (const char* p = print_text(os, format, '%'); *p != '\0'; p = print_text(os, p, '%')) {
        const char* start = p++;
        if (*p == '%') {
            os.put('%');
            ++p;
            continue;
        }
        if (*p == 'b') {
            print_escaped(os, args.Next());
            ++p;
            continue;
        }

        // The directive's extent: [flag][* or digits][.[* or digits]][h|l|L] and the conversion.
        if (is_flag(*p))
            ++p;
        p = skip_count(p);
        if (*p == '.')
            p = skip_count(p + 1);
        if (is_length_modifier(*p))
            ++p;
        // Through the conversion character, or through the NUL when the format ends first.
        const size_t length = static_cast<size_t>(p - start) + 1;
        if (*p != '\0')
            ++p;

        // The directive is parsed from a copy of its own text: a bare '.' then converts from the
        // text behind it within the directive ("%.d" reports "d: expected a numeric value").
        char local[32];
        std::unique_ptr<char[]> heap;
        char* direc = local;
        if (length >= sizeof local) {
            heap.reset(new char[length + 1]);
            direc = heap.get();
        }
        std::memcpy(direc, start, length);
        direc[length] = '\0';

        if (!is_conversion(direc[length - 1])) {
            print_direc(os, direc, length, 0, -1, -1, nullptr); // reports and fails
            continue;
        }
        const char* d = direc + 1;
        bool left = false;
        if (is_flag(*d))
            left = *d++ == '-';
        int width = -1;
        if (*d == '*')
            width = checked_count(args.Next());
        else if (is_digit(*d))
            width = checked_count(d);
        d = skip_count(d);
        int prec = -1;
        if (*d == '.')
            prec = checked_count(d[1] == '*' ? args.Next() : d + 1);
        print_direc(os, direc, length, left, width, prec, args.Next());
    }
    return args.used;
}
