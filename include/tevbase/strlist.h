// Lists of strings (TOList<String_t>) and the text functions around them: Split, Concat, the list
// comparators, and the tokenizers StringTok and StringSplitter.
#ifndef TEVBASE_STRLIST_H
#define TEVBASE_STRLIST_H

#include <generic/tolist>
#include <tevbase/config.h>
#include <tevbase/string.h>

// Appends the fields of s, cut at every character of seps, to list and returns their number. Every
// separator ends a field: "a,,b" gives "a", "" and "b"; "a," gives "a" and ""; "" gives one "". Fields
// are non-null texts. A null s appends nothing and returns 0; null seps is no separator.
TEVBASE_API int Split(const char* s, TOList<String_t>& list, const char* seps);

// a, then sep, then b; never null data.
TEVBASE_API String_t Concat(const String_t& a, const String_t& b, const char* sep);
// The elements in order with sep between neighbours; "" for an empty list, never null data.
TEVBASE_API String_t Concat(const TOList<String_t>& list, char sep);

// strcmp of the link's text with the key's; a null text is below every other text, "" included.
TEVBASE_API int StrListCmp(const TOLink<String_t>* link, const String_t* key);
// The same, case-insensitive: two letters compare as their upper-case codes, anything else by code.
TEVBASE_API int StrListCaseCmp(const TOLink<String_t>* link, const String_t* key);

// Tokens of a private copy of a text, as strtok finds them: runs of separators never make empty tokens.
// A token is cut out in place and stays valid until the next call, assignment or destruction; no
// allocation per token.
class TEVBASE_API StringTok {
public:
    // A null or empty text has no tokens.
    explicit StringTok(const char* s);
    // The copy goes on from the same place as other.
    StringTok(const StringTok& other);
    StringTok& operator=(const StringTok& other);
    // Starts over on s.
    StringTok& operator=(const char* s);

    // The next token, after skipping characters of seps; null when none is left. seps may differ from
    // call to call; null is none.
    char* operator()(const char* seps);
    // The separator the last token's end overwrote; 0 when it ran to the end of the text.
    char Separator() const { return saved; }

private:
    void Swap(StringTok& other);

    String_t buf; // the private copy, cut up in place
    char* pos;    // where the next search starts; null when exhausted
    char saved;
};

// Fields of a private copy of a text: every separator character ends a field, and separators never
// collapse ("a,,b" gives "a", "" and "b"); a trailing separator makes no empty last field. Characters of
// the trim set are stripped from both ends of each field. The current field is cut out in place and
// stays valid until Next, Bind, assignment or destruction.
//
//     StringSplitter fields(" x , y ", ",", " ");
//     for (; fields.Valid(); fields.Next())
//         use(fields.Field());  // "x", then "y"
class TEVBASE_API StringSplitter {
public:
    // Null texts are empty; the first field (if any) is current.
    StringSplitter(const char* s, const char* seps, const char* trim);
    // The copy goes on from the same place as other.
    StringSplitter(const StringSplitter& other);
    StringSplitter& operator=(const StringSplitter& other);

    // Starts over on s with the same separators and trim set.
    void Bind(const char* s);
    // Makes the following field current, if there is one.
    void Next();
    // Whether there is a current field.
    bool Valid() const { return step != 0; }
    // The current field, NUL-terminated; null when there is none.
    char* Field() const { return step != 0 ? cur : nullptr; }

private:
    void Start(const char* s);
    void Swap(StringSplitter& other);

    String_t text; // the private copy, cut up in place
    String_t seps;
    String_t trim;
    char* cur;     // the current field
    char* end;     // the NUL ending text
    unsigned step; // from cur to the next field's start: the field's length + 1; 0 for no field
};

#endif
