// StrFmt and StrFormat: printf-style formatting onto output streams.
#ifndef TEVBASE_FORMAT_H
#define TEVBASE_FORMAT_H

#include <iosfwd>

#include <tevbase/config.h>

// Directives, after a '%':
//   %%        a literal '%'
//   %b        the next argument with its backslash escapes expanded
//   otherwise [flag][width][.precision][h|l|L]conversion, where
//     flag        one of "-+ #"; only '-' (left adjustment) has an effect
//     width       '*' (next argument) or digits; a '0' is a digit here, never a flag
//     precision   '.' then '*' or digits; a bare '.' is precision 0
//   A width or precision below 0 or beyond INT_MAX counts as none.
//     conversion  one of "diouxXfeEgGcs"
//
// Backslash escapes, in the format and in %b arguments: \a \b \f \n \r \t \v give the control
// characters; \" \\ \c give the character itself; \x with 1 to 3 hex digits and \0 with up to 3 octal
// digits insert the value as an int, in the stream's current base ("\x41" writes 65). Any other
// character after a backslash is reported as "\q: invalid escape" on standard error and written as
// text; a backslash that ends the text is written as itself.
//
// Each directive becomes stream state (adjustment, width, precision, fill, base, float field, upper
// case) and the value goes in with the stream's insertion operators. The state stays on the stream
// afterwards: callers rely on it (after "%x" a "%d" also prints in hexadecimal; after "%.3d" the fill
// stays '0'). For integers a precision is a zero fill to that many places: with a width too, the
// (width - precision) blanks go before the number, or after it when left-adjusted. "%s" pads by hand
// with blanks and never uses the stream's width.
//
// An unknown conversion writes "%k: invalid directive" to standard error and fails an assertion: a bad
// format is a programming error.

// Formats typed arguments: '*' takes an int; d, i, o take a long; u, x, X a long inserted as unsigned;
// e, E, f, g, G a double; c an int written as one character; s and b a const char*. A null %s text
// sets the stream's bad state. Returns the number of directives handled, "%%" and "%b" included; -1
// for a null format.
TEVBASE_API int StrFmt(std::ostream& os, const char* format, ...);

// Formats text arguments, in the manner of the shell's printf: numbers are converted from the text when
// used (strtol for d, i, o; strtoul for u, x, X and '*'; strtod for floats). A conversion error is
// reported with perror(text), a text that holds no number as "text: expected a numeric value"; the
// converted value (0) is used all the same. %c writes the first character of its text, %s writes a null
// text as "(nil)". A directive without an argument left formats the empty text (%b then writes nothing).
// Returns the number of arguments used; -1 for a null format.
TEVBASE_API int StrFormat(std::ostream& os, const char* format, int argc, char** argv);

#endif
