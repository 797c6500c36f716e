// SockIO::PollFd matches struct pollfd; the library's TVarr instances for poll sets.
#include <tevbase/pollfd.h>

#include <poll.h>

#include <cstddef>

static_assert(sizeof(SockIO::PollFd) == sizeof(pollfd), "PollFd must be laid out as struct pollfd");
static_assert(offsetof(SockIO::PollFd, fd) == offsetof(pollfd, fd), "PollFd::fd");
static_assert(offsetof(SockIO::PollFd, events) == offsetof(pollfd, events), "PollFd::events");
static_assert(offsetof(SockIO::PollFd, revents) == offsetof(pollfd, revents), "PollFd::revents");

template void TVarr<SockIO::PollFd>::Init();
template void TVarr<SockIO::PollFd>::Extend(unsigned int);
template class TVarrCmp<SockIO::PollFd>;
template class TVarrRange<SockIO::PollFd>;
