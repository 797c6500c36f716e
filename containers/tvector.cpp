// The library's instances of TVector.
#include <generic/tvector>

template class TVector<int>;
template class TVector<double>;
template class TVector<String_t>;
