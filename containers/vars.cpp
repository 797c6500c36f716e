// Vars: variable definitions and the expansion of references.
#include <tevbase/vars.h>

#include <ctype.h>

#include <cstdio>
#include <cstring>

#include <tevbase/strlist.h>

namespace {

bool IsNameChar(char c) { return isalnum(static_cast<unsigned char>(c)) || c == '_'; }

const char* SkipBlanks(const char* s)
{
    while (*s == ' ' || (*s >= '\t' && *s <= '\r'))
        ++s;
    return s;
}

} // namespace

void Vars::Add(const String_t& name, const String_t& value)
{
    std::pair<String_t*, int> r = vars.Insert(name, value);
    if (r.second == 0)
        *r.first = value;
}

void Vars::Add(int n, const char* value)
{
    char name[16];
    std::snprintf(name, sizeof name, "%d", n);
    Add(String_t(name), String_t(value));
}

void Vars::Add(const char* defs)
{
    if (defs == nullptr)
        return;
    StringTok words(defs);
    TVarr<char> buf(1024, VARR_INCR);
    int ordinal = 0;
    while (const char* word = words(":"))
        AddWord(word, ++ordinal, &buf);
}

void Vars::Add(const char** argv)
{
    if (argv == nullptr)
        return;
    for (int i = 0; argv[i] != nullptr; ++i)
        AddWord(argv[i], i + 1, nullptr);
}

// Defines the variable of one word; expand, when not null, is the buffer for expanding the value.
void Vars::AddWord(const char* word, int ordinal, TVarr<char>* expand)
{
    word = SkipBlanks(word);
    const char* eq = std::strchr(word, '=');
    if (eq == nullptr) {
        Add(ordinal, expand != nullptr ? Substitute(*expand, word, 0) : word);
        return;
    }
    const String_t name(word, static_cast<unsigned>(eq - word));
    const char* value = SkipBlanks(eq + 1);
    Add(name, String_t(expand != nullptr ? Substitute(*expand, value, 0) : value));
}

char* Vars::Substitute(TVarr<char>& out, const char* text, int keep) const
{
    out.Reset();
    const char* p = text != nullptr ? text : "";
    for (const char* m; marker != '\0' && (m = std::strchr(p, marker)) != nullptr;) {
        out.Cat(static_cast<unsigned>(m - p), p);
        const char* name = m + 1;
        const bool braced = *name == '{';
        const char* end;
        if (braced) {
            ++name;
            end = std::strchr(name, '}');
            if (end == nullptr)
                end = name + std::strlen(name);
        } else {
            for (end = name; IsNameChar(*end); ++end) {
            }
        }
        const unsigned len = static_cast<unsigned>(end - name);
        if (len == 0) {
            out.App(marker);
        } else if (const String_t* value = vars.Find(String_t(name, len))) {
            out.Cat(value->Length(), value->Text());
        } else if (keep != 0) {
            out.App(marker);
            if (braced)
                out.App('{');
            out.Cat(len, name);
            if (braced)
                out.App('}');
        }
        p = *end == '}' ? end + 1 : end;
    }
    out.Cat(static_cast<unsigned>(std::strlen(p)), p);
    out.App('\0');
    return out.Get();
}
