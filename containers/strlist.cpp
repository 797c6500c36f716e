// Split, Concat and the comparators of string lists.
#include <tevbase/cstr.h>
#include <tevbase/strlist.h>

#include <cstring>
#include <new>

namespace {

// A text of n characters from s, never null data.
String_t field(const char* s, std::size_t n)
{
    return n != 0 ? String_t(s, static_cast<unsigned>(n)) : String_t("");
}

// Room for n characters in a fresh string; texts are limited to 32-bit lengths.
char* reserve(String_t& out, std::size_t n)
{
    if (n > 0xFFFFFFFEu)
        throw std::bad_alloc();
    return out.Reserve(static_cast<unsigned>(n));
}

const char* text_of(const String_t* s)
{
    return s != nullptr ? s->Chars() : nullptr;
}

} // namespace

int Split(const char* s, TOList<String_t>& list, const char* seps)
{
    if (s == nullptr)
        return 0;
    if (seps == nullptr)
        seps = "";
    int count = 1;
    for (const char* sep; (sep = std::strpbrk(s, seps)) != nullptr; s = sep + 1, ++count)
        list.Append(field(s, static_cast<std::size_t>(sep - s)));
    list.Append(String_t(s));
    return count;
}

String_t Concat(const String_t& a, const String_t& b, const char* sep)
{
    const std::size_t na = a.Length(), nsep = sep != nullptr ? std::strlen(sep) : 0, nb = b.Length();
    String_t out;
    char* p = reserve(out, na + nsep + nb);
    std::memcpy(p, a.Text(), na);
    std::memcpy(p + na, sep != nullptr ? sep : "", nsep);
    std::memcpy(p + na + nsep, b.Text(), nb + 1);
    return out;
}

String_t Concat(const TOList<String_t>& list, char sep)
{
    std::size_t n = 0;
    for (TOListIterator<String_t> it(list); const String_t* s = it();)
        n += s->Length() + 1;
    String_t out;
    char* p = reserve(out, n != 0 ? n - 1 : 0);
    bool first = true;
    for (TOListIterator<String_t> it(list); const String_t* s = it(); first = false) {
        if (!first)
            *p++ = sep;
        const std::size_t len = s->Length();
        std::memcpy(p, s->Text(), len);
        p += len;
    }
    *p = '\0';
    return out;
}

int StrListCmp(const TOLink<String_t>* link, const String_t* key)
{
    return str_cmp(link->contents.Chars(), text_of(key));
}

int StrListCaseCmp(const TOLink<String_t>* link, const String_t* key)
{
    return str_icmp(link->contents.Chars(), text_of(key));
}
