// Element records of the string-keyed hash tables: StrStrMap and TabStr (StrCnt is in string.h).
#ifndef TEVBASE_STRHASH_H
#define TEVBASE_STRHASH_H

#include <tevbase/config.h>
#include <tevbase/string.h>

// A string-to-string pair, keyed by `key`.
struct TEVBASE_API StrStrMap {
    String_t key;
    String_t value;

    StrStrMap() {}
    StrStrMap(const String_t& k) : key(k) {}
    StrStrMap(const String_t& k, const String_t& v) : key(k), value(v) {}
};

// A lone string: the element of a string set.
struct TEVBASE_API TabStr {
    String_t str;

    TabStr() {}
    TabStr(const String_t& s) : str(s) {}
};

#endif
