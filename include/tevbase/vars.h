// Vars: named and positional string variables, and the expansion of references to them in text.
#ifndef TEVBASE_VARS_H
#define TEVBASE_VARS_H

#include <generic/tvarr>
#include <tevbase/config.h>
#include <tevbase/string.h>
#include <tevbase/tmap.h>

// A store of string variables and the expansion of references to them. Positional variables are
// named by their decimal number ("1", "2", ...). With the marker '$', a text refers to a variable as
//
//     $name     name: the longest run of letters, digits and '_' after the marker
//     ${name}   name: everything up to the next '}' (or to the end of the text)
//
// A '}' right after a reference is dropped, even after an unbraced one ("$a}b" gives the value of a,
// then "b"); callers rely on it. A marker without a name ("$ ", "${}", a final "$") stands for the
// marker itself: there is no other escape. Values are inserted as they are, never expanded again.
class TEVBASE_API Vars {
public:
    explicit Vars(char marker = '$') : marker(marker) {}

    // Defines name as value, replacing an earlier value.
    void Add(const String_t& name, const String_t& value);
    // Defines the positional variable n.
    void Add(int n, const char* value);
    // Defines the variables of a colon-separated list of words (runs of colons make no empty word);
    // null does nothing. Leading blanks of a word are skipped. A word "name=value" defines name (all
    // before the first '=', trailing blanks included) as value (after the '=', leading blanks skipped);
    // any other word is a positional variable numbered by its place among all the words, counting
    // from 1: "a:x=1:b" defines 1 = a, x = 1 and 3 = b. Values are expanded (keep 0) with the
    // variables defined so far, earlier words included.
    void Add(const char* defs);
    // The same for a null-terminated array of words (each word whole, colons included), without
    // expansion; a null array does nothing.
    void Add(const char** argv);

    // Expands the references in text into out and returns out's storage, a NUL-terminated string.
    // An undefined variable expands to nothing when keep is 0 and stays as written otherwise. A null
    // text gives "".
    char* Substitute(TVarr<char>& out, const char* text, int keep) const;

private:
    void AddWord(const char* word, int ordinal, TVarr<char>* expand);

    TMap<String_t, String_t, GStringCmp> vars;
    char marker;
};

#endif
