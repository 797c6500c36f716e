// The library's instances of TVector and TSortedVector.
#include <generic/tvector>

template class TVector<int>;
template class TVector<double>;
template class TVector<String_t>;
template class TSortedVector<SockIO::PollFd, SockIO::PollFd::Compare>;
