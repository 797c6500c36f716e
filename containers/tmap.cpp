// GStringCmp and the library's instances of TMap.
#include <tevbase/tmap.h>

#include <tevbase/cstr.h>

int GStringCmp::operator()(const String_t& a, const String_t& b) const
{
    return str_cmp(a.Chars(), b.Chars());
}

template class TPair<String_t, String_t>;
template class TPair<String_t, int>;
template class TMapNode<String_t, String_t, GStringCmp>;
template class TMapNode<String_t, int, GStringCmp>;
template class TMapAction<String_t, String_t, GStringCmp>;
template class TMapAction<String_t, int, GStringCmp>;
template class TMap<String_t, String_t, GStringCmp>;
template class TMap<String_t, int, GStringCmp>;
template TMapAction<String_t, String_t, GStringCmp>& ForEach(TMap<String_t, String_t, GStringCmp>&,
                                                             TMapAction<String_t, String_t, GStringCmp>&);
template TMapAction<String_t, int, GStringCmp>& ForEach(TMap<String_t, int, GStringCmp>&,
                                                        TMapAction<String_t, int, GStringCmp>&);
template TMapAction<String_t, String_t, GStringCmp>& Range(TMap<String_t, String_t, GStringCmp>&,
                                                           TMapAction<String_t, String_t, GStringCmp>&,
                                                           const String_t&, const String_t&);
template TMapAction<String_t, int, GStringCmp>& Range(TMap<String_t, int, GStringCmp>&,
                                                      TMapAction<String_t, int, GStringCmp>&, const String_t&,
                                                      const String_t&);
