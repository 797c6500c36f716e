// The library's instances of TOList and its companions.
#include <generic/tolist>

template class TOLink<String_t>;
template class TOList<String_t>;
template class TOListIterator<String_t>;
