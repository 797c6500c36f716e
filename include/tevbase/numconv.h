// Number conversion in the notation of electrical engineering: parsers and stream readers with scale
// suffixes and exponents, integer writers, and the scaled short form.
#ifndef TEVBASE_NUMCONV_H
#define TEVBASE_NUMCONV_H

#include <stdint.h>

#include <tevbase/config.h>

// Two suffix dialects, kept apart:
//   engineering (str_todouble, str_tofloat, GetDouble, GetFloat): case-insensitive A 1e-18, F 1e-15,
//     P 1e-12, N 1e-9, U 1e-6, M 1e-3, MEG 1e6, MIL 2.54e-5 (stream readers only), K 1e3, G 1e9,
//     T 1e12, D or E: exponent;
//   SI (str_ctodouble, GetCDouble, GetCFloat): case-sensitive y 1e-24, z 1e-21, a 1e-18, f 1e-15,
//     p 1e-12, n 1e-9, u 1e-6, m 1e-3, % 0.01, K or k 1e3, M 1e6, G 1e9, T 1e12, P 1e15, Z 1e21,
//     Y 1e24, d, D, e or E: exponent (so "2E" is a bad exponent, never exa).
// Any other character ends the number and is left unread. The value is multiplied by the factor.
//
// Results are pinned to the bit: digits are summed from the least significant upward with a fused
// multiply-add, the fraction is divided by 10^k, and an exponent factor is formed by repeated
// multiplication by 10, or by 0.1 for a negative exponent in the string parsers ("1e-3" gives
// 0.0010000000000000002). Micro is 1.000000000000001e-06 in the string parsers and exactly 1e-6 in
// the stream readers (callers rely on both).

TEVBASE_C_BEGIN

// String parsers: the number at the start of s (leading isspace characters and a sign allowed) into
// *value. They return the count of characters consumed, as a 16-bit count, or 0 on failure, which
// leaves *value untouched. Null s fails.
//
// An integer of at most 16 digits, summed in unsigned 32 bits (more than 10 digits wrap); no suffix.
// "  -42x" gives -42 and returns 5.
TEVBASE_API int16_t str_toint(const char* s, int* value);
// strtol(s, NULL, 10); 0 for null s.
TEVBASE_API long str_tolong(const char* s);
// Real numbers: digits with an optional '.' and fraction (at least one digit in all; a run of more
// than 32 digits counts as none), then a suffix. The words "inf" and "min" alone after the sign give
// the largest finite and the smallest normalised value. "4.7k" gives 4700 and returns 4.
// Engineering dialect, all in single precision (float factors).
TEVBASE_API int16_t str_tofloat(const char* s, float* value);
TEVBASE_API int16_t str_tofloat_(const char* s, float* value);
// Engineering dialect.
TEVBASE_API int16_t str_todouble(const char* s, double* value);
// SI dialect.
TEVBASE_API int16_t str_ctodouble(const char* s, double* value);

// Integer writers: the text of value at the end of buf (size bytes, buf[size-1] the NUL, nothing
// checked); they return its first character. A non-NUL fill pads the text, sign included, on the
// left to width characters: -5 zero-filled to 4 gives "00-5" (use a blank fill with signed values).
TEVBASE_API char* str_int2str10(char* buf, int size, int value, int width, char fill);
TEVBASE_API char* str_long2str10(char* buf, int size, long value, int width, char fill);
TEVBASE_API char* str_longlong2str10(char* buf, int size, long long value, int width, char fill);
TEVBASE_API char* str_uint2str10(char* buf, int size, unsigned int value, int width, char fill);
TEVBASE_API char* str_ulong2str10(char* buf, int size, unsigned long value, int width, char fill);
TEVBASE_API char* str_ulonglong2str10(char* buf, int size, unsigned long long value, int width, char fill);
// The bits of value as unsigned digits in radix 2, 8 or 16 (lower case), padded to width, then the
// prefix "0b", "0" or "0x": 255 in 16 to width 4 with '0' gives "0x00ff". Any other radix aborts.
TEVBASE_API char* str_int2strradix(char* buf, int size, int value, int width, char fill, int radix);
TEVBASE_API char* str_long2strradix(char* buf, int size, long value, int width, char fill, int radix);
TEVBASE_API char* str_longlong2strradix(char* buf, int size, long long value, int width, char fill, int radix);

// The scaled short form: three significant digits with the scale letter in place of the decimal
// point, one entry per power of 1000 from 1e-18 to 1e12: A F P N U M _ K ME G T. 4700 gives "4K70",
// 47000 "47K0", 470000 "470K", 0 "0_00". A mantissa rounding up to 1000 stays ("10_00" for 9.9996).
// Magnitudes below 1e-18 or from 1e13 on, infinities and NaN leave buf unchanged. buf holds 8 bytes.
TEVBASE_API char* str_tosc_r(char* buf, double value);
// The same into one static buffer: not reentrant.
TEVBASE_API char* str_tosc(double value);

TEVBASE_C_END

#ifdef __cplusplus
#include <iosfwd>

// Stream readers: skip blanks (as formatted input does), then read a sign, digits with an optional
// '.' and fraction, and a suffix. Failure sets failbit and leaves the result untouched. The number's
// text is converted with strtod (at most 127 characters are kept); a character after the sign is
// taken as it is ("- 5" fails); no special words. What ends the number is left in the stream, as is
// the character after an M that starts neither MEG nor MIL ("3MX" gives 0.003 and leaves "X"); the
// end of the stream ends it too (the value is stored, eofbit set). An exponent is read after blanks:
// a sign or digit, then up to 30 more digits; it then clears the stream state.
TEVBASE_API std::istream& GetDouble(std::istream& is, double& value);
TEVBASE_API std::istream& GetFloat(std::istream& is, float& value);
TEVBASE_API std::istream& GetCDouble(std::istream& is, double& value);
TEVBASE_API std::istream& GetCFloat(std::istream& is, float& value);
#endif

#endif
