// Small text and number utilities: percent-encoding, file-name completion and matching, gcd,
// rounding, a time-stamp name.
#ifndef TEVBASE_TEXTUTIL_H
#define TEVBASE_TEXTUTIL_H

#include <tevbase/config.h>

#ifdef __cplusplus
#include <tevbase/string.h>

// Percent-encoding: alphanumerics (isalnum) and "*-._" are copied, every other byte, blank included,
// becomes '%' and two lower-case hex digits: "a b/c" gives "a%20b%2fc". Null gives null data.
TEVBASE_API String_t UrlEncode(const char* s);
// The inverse, lenient as callers expect: '%' and the two characters after it become the byte that
// sscanf "%x" reads from them, unchecked ("%4z" gives 4), or 2 when it reads nothing. A '%' with
// fewer than two characters after it is copied as it is, '+' too. A decoded zero byte ends the text.
// Null gives null data.
TEVBASE_API String_t UrlDecode(const char* s);
#endif

TEVBASE_C_BEGIN

// Completes a file name with a default extension. When the last component of name has a '.', base
// gets the name up to the last '.' and base is returned (ext is not used). Otherwise base gets a copy
// of name, ext is appended to name in place (the caller's buffer must have room) and name is
// returned. base may be name itself.
TEVBASE_API char* cfname(char* name, char* base, const char* ext);
// Matches the whole name against a pattern of '*' (any run, also empty), '?' (any one character) and
// literal characters. Returns 0 for a match and -1 otherwise. Null is the empty text.
TEVBASE_API int fname_match(const char* pattern, const char* name);
// Greatest common divisor of positive a and b. a below 1 gives b; b below 0 gives b. gcd(a, 0) with
// a positive never returns: callers never pass 0.
TEVBASE_API int gcd(int a, int b);
// Rounds half away from zero: 2.5 gives 3, -2.5 gives -3.
TEVBASE_API int mth_round(double x);
// A name from the local time: years since 1900, day of the year from 0 (three digits), hour, minute
// and second (two each), such as "116319202407" for 2016, day 319, 20:24:07. Written into one static
// buffer: not reentrant.
TEVBASE_API char* getuname(void);

TEVBASE_C_END

#endif
