// Conversions shared by StrFmt (text/strfmt.cpp) and StrFormat (text/format.cpp).
#ifndef TEVBASE_TEXT_FMTIMPL_H
#define TEVBASE_TEXT_FMTIMPL_H

#include <cstring>
#include <iosfwd>

// Global on purpose: their assertion reports name these signatures. A width or precision below 0 is
// absent.

// Sets the float field and case for e, E, f, g or G, then the adjustment, width and precision, and
// inserts the value.
void print_float(std::ostream& os, char conv, int left, int width, int prec, double value);
// Sets the base and case for d, i, o, u, x or X and inserts the value (unsigned for u, x and X).
void print_int_arg(std::ostream& os, char conv, long value);

namespace tevbase_fmt {

// The flags of the directive grammar; only '-' has an effect.
inline bool is_flag(char c)
{
    return c == '-' || c == '+' || c == ' ' || c == '#';
}
inline bool is_length_modifier(char c)
{
    return c == 'h' || c == 'l' || c == 'L';
}
inline bool is_conversion(char c)
{
    return c != '\0' && std::strchr("diouxXfeEgGcs", c) != nullptr;
}
inline bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

void set_adjustment(std::ostream& os, bool left);
// An integer conversion with its width and precision: a precision is a '0' fill to that width.
void print_int(std::ostream& os, char conv, bool left, int width, int prec, long value);
// "%s" of non-null s, padded by hand with blanks.
void print_str(std::ostream& os, bool left, int width, int prec, const char* s);
// Writes s with its escapes expanded up to the NUL or the first `stop` outside an escape; returns
// where it stopped.
const char* print_text(std::ostream& os, const char* s, char stop);
// s with its escapes expanded; null writes nothing.
void print_escaped(std::ostream& os, const char* s);
// "%k: invalid directive" on standard error.
void report_invalid_directive(char conv);

} // namespace tevbase_fmt

#endif
