// SockIO::PollFd matches struct pollfd.
#include <tevbase/pollfd.h>

#include <poll.h>

#include <cstddef>

static_assert(sizeof(SockIO::PollFd) == sizeof(pollfd), "PollFd must be laid out as struct pollfd");
static_assert(offsetof(SockIO::PollFd, fd) == offsetof(pollfd, fd), "PollFd::fd");
static_assert(offsetof(SockIO::PollFd, events) == offsetof(pollfd, events), "PollFd::events");
static_assert(offsetof(SockIO::PollFd, revents) == offsetof(pollfd, revents), "PollFd::revents");
