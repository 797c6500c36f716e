// The library's instances of TVarr and its companions.
#include <generic/tvarr>

template class TVarr<double>;
template class TVarr<float>;
template class TVarr<int>;
template class TVarr<char>;
template class TVarr<String_t>;
// Argument vectors: the rest of TVarr<char*> is instantiated where it is used.
template void TVarr<char*>::Init();
template void TVarr<char*>::Extend(unsigned int);

template class TVarrCmp<double>;
template class TVarrCmp<float>;
template class TVarrCmp<int>;
template class TVarrCmp<char>;
template class TVarrCmp<String_t>;
template class TVarrCmp<char*>;
template class TVarrRange<char>;
template class TVarrRange<String_t>;
template class TVarrRange<char*>;

template void ArrCpy<char>(char*, const char*, unsigned int);
template void ArrSet<char>(char*, const char&, unsigned int);
