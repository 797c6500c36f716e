// The library's instances of OHashTable and OHashIterator.
#include <generic/gohash>

template class OHashTable<String_t, StrCnt>;
template class OHashTable<String_t, StrStrMap>;
template class OHashTable<String_t, TabStr>;
template class OHashIterator<String_t, StrCnt>;
template class OHashIterator<String_t, StrStrMap>;
template class OHashIterator<String_t, TabStr>;
