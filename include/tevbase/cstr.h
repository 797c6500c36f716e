// C string routines: null-tolerant wrappers, fixed-length blank-padded fields, tokenising, a growing
// text buffer and column output. Usable from C.
#ifndef TEVBASE_CSTR_H
#define TEVBASE_CSTR_H

#include <stdint.h>

#include <tevbase/config.h>

TEVBASE_C_BEGIN

// ---- Null-tolerant wrappers ------------------------------------------------------------------------
//
// A null source reads as no text. Counts below 0 act as 0. The copy and concatenation routines return
// dst (null when dst is null).
//
// Compares give 0 for the same pointer (two nulls included), -1 when only a is null, 1 when only b is.
// The case-insensitive ones compare two letters (isalpha) by their toupper codes and any other pair by
// their plain codes, as unsigned char; the result is that difference itself, not clamped to -1/0/1:
// str_icmp("a", "[") is 'a' - '[' although 'A' sorts before '['.

TEVBASE_API int str_len(const char* s);
// strcpy; a null src leaves dst "".
TEVBASE_API char* str_cpy(char* dst, const char* src);
// strncpy(dst, src, n), then dst[n] = NUL: dst needs n + 1 bytes. A null src leaves dst "".
TEVBASE_API char* str_ncpy(char* dst, const char* src, int n);
// Copies min(size - 1, strlen(src)) characters and a NUL. Does nothing when size is below 1.
TEVBASE_API char* str_lcpy(char* dst, const char* src, int size);
// strcat; nothing when either is null.
TEVBASE_API char* str_cat(char* dst, const char* src);
// strncat; nothing when either is null.
TEVBASE_API char* str_ncat(char* dst, const char* src, int n);
// Appends min(size - 1 - strlen(dst), strlen(src)) characters and a NUL. Leaves dst as it is when
// size - 1 - strlen(dst) is negative: dst is then already longer than size allows.
TEVBASE_API char* str_lcat(char* dst, const char* src, int size);

// strcmp and strncmp: only the sign of the result is defined.
TEVBASE_API int str_cmp(const char* a, const char* b);
TEVBASE_API int str_ncmp(const char* a, const char* b, int n);
// Case-insensitive. Where one text ends, the result is the plain difference of that position's bytes.
TEVBASE_API int str_icmp(const char* a, const char* b);
// At most n characters; 0 when n is below 1 (after the null rules).
TEVBASE_API int str_nicmp(const char* a, const char* b, int n);

// A malloc'ed copy of s ("" for null); free it with str_free. Aborts without a message when malloc
// fails.
TEVBASE_API char* str_save(const char* s);
// A malloc'ed block of n + 1 bytes holding up to n characters of s and a NUL ("" for null). Aborts
// without a message when malloc fails.
TEVBASE_API char* str_nsave(const char* s, int n);
TEVBASE_API void str_free(void* p);
// strerror: the text may be overwritten by the next call.
TEVBASE_API char* str_error(int errnum);

// ---- Fixed-length fields ---------------------------------------------------------------------------
//
// A field is slen characters, blank-padded, not NUL-terminated; a NUL inside it is an ordinary character
// except where a routine says it ends the text. Positions are 1-based and 0 means not found. Lengths and
// positions must lie within the buffers: they are not checked. A null field reads as no characters, a
// null destination is left alone, and positions below 1 find nothing.

// The length of the first n characters without trailing blanks (' ' only); 0 when all are blanks. n
// itself when the last character is not a blank or n is below 1.
TEVBASE_API int str_length(const char* s, int n);

// Position of the first occurrence of sub[0..sublen) lying wholly within s[0..slen). 1 for sublen 0;
// 0 when slen is below 1, even for sublen 0.
TEVBASE_API int str_index(const char* s, int slen, const char* sub, int sublen);
TEVBASE_API int str_iindex(const char* s, int slen, const char* sub, int sublen);
// Position of NUL-terminated sub in NUL-terminated s. 0 when s is empty; 1 when only sub is empty.
TEVBASE_API int str_indx(const char* s, const char* sub);
TEVBASE_API int str_iindx(const char* s, const char* sub);
// 1 when the whole of NUL-terminated sub occurs in s at position pos, else 0; 1 for an empty sub.
TEVBASE_API int str_cont(int pos, const char* s, const char* sub);
TEVBASE_API int str_icont(int pos, const char* s, const char* sub);
// 1 when sub[0..sublen) occurs at position pos wholly within s[0..slen), else 0; 1 for sublen 0 at any
// position.
TEVBASE_API int str_ncont(int pos, const char* s, int slen, const char* sub, int sublen);
TEVBASE_API int str_nicont(int pos, const char* s, int slen, const char* sub, int sublen);
// The `i` variants above compare case-insensitively, as str_icmp does.

// Copies up to len characters of s from position pos, stopping at a NUL, to dst, then blanks up to
// dstlen characters. Writes no NUL, and never more than dstlen characters.
TEVBASE_API void str_substr(const char* s, int pos, int len, char* dst, int dstlen);
// Copies up to min(n, dstlen) characters of src, stopping at a NUL, to dst, then padchar up to dstlen
// characters. Writes no NUL. src may be dst.
TEVBASE_API void str_pad(const char* src, int n, char padchar, int dstlen, char* dst);
// Shift the n-character field by k places, blanking the places left behind; k >= n blanks it all.
TEVBASE_API void str_lshft(char* s, int n, int k);
TEVBASE_API void str_rshft(char* s, int n, int k);

// Fortran-callable: convert, in place, the first min(*len, hidden_len) characters (isupper / islower).
// hidden_len is the declared length of the character argument, passed by value after the others.
TEVBASE_API void tolower_(char* s, const int* len, int hidden_len);
TEVBASE_API void toupper_(char* s, const int* len, int hidden_len);

// ---- Tools -----------------------------------------------------------------------------------------
//
// Predicates take a character as unsigned char, the way the isspace family does, and return non-zero
// for a match.

// The first character of s for which pred is non-zero; null when there is none or s is empty.
TEVBASE_API char* str_FindC(const char* s, int (*pred)(int));
// The same as str_FindC; callers use both names.
TEVBASE_API char* str_FindCN(const char* s, int (*pred)(int));

// Tokeniser over a caller's slot *state. A call with pred null stores s in the slot and returns null.
// Each later call (s unused) skips separators (pred non-zero) and returns null at the end of the text;
// otherwise it ends the token by writing a NUL over the next separator, leaves the slot just behind
// it (or at the NUL ending the text) and returns the token. The text is changed in place.
TEVBASE_API char* str_Tok(char** state, char* s, int (*pred)(int));
// Tokenises s with str_Tok into out[0..count) followed by a null pointer, and returns the count. out
// needs room for the count plus one.
TEVBASE_API int str_split(char* s, int (*pred)(int), char** out);

// Prints n items of size bytes stored at base in ncols columns, ordered down the columns: for each row
// r, print(item) for the items r, r + rows, r + 2 rows, ... below n, then newline(); rows is
// (n + ncols - 1) / ncols. Sorts the items in place with qsort first when cmp is not null. Prints
// nothing when ncols or n is below 1.
TEVBASE_API void str_fmt_mul_cols(void* base, int n, int size, int (*cmp)(const void*, const void*), int ncols,
                                  void (*print)(const void* item), void (*newline)(void));

// ---- Growing text buffer ---------------------------------------------------------------------------

typedef struct str_arr_t {
    char* buf;    // malloc'ed block, or null
    char* end;    // where the next text goes
    int32_t size; // capacity of buf in bytes, a multiple of 128; 0 when there is no block
} str_arr_t;

// Sets every field to zero.
TEVBASE_API void str_arr_init(str_arr_t* a);
// Appends s, growing the block by 128 bytes at a time while size <= used + strlen(s), and returns buf.
// The first call allocates 128 bytes. A null s only does that. s may point into the buffer itself.
// Aborts without a message when memory runs out.
TEVBASE_API char* str_arr_cat(str_arr_t* a, const char* s);
// Starts over at buf, then appends s as str_arr_cat does. With a null s the old text stays in buf.
TEVBASE_API char* str_arr_cpy(str_arr_t* a, const char* s);
// buf.
TEVBASE_API char* str_arr_str(const str_arr_t* a);
// Frees buf; the fields keep their values, so call str_arr_init before using the record again.
TEVBASE_API void str_arr_delete(str_arr_t* a);

TEVBASE_C_END

#endif
