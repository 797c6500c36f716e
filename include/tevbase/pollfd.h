// SockIO::PollFd: one descriptor of a poll set.
#ifndef TEVBASE_POLLFD_H
#define TEVBASE_POLLFD_H

#include <generic/tvarr>
#include <tevbase/config.h>

namespace SockIO {

// A descriptor with the events asked for and the events returned, laid out as the system's struct
// pollfd so that an array of them goes to poll() as it is. A new or cleared record has descriptor -1
// (poll skips it) and no events.
struct TEVBASE_API PollFd {
    int fd;
    short events;
    short revents;

    PollFd() : fd(-1), events(0), revents(0) {}
    explicit PollFd(int d, short ev = 0) : fd(d), events(ev), revents(0) {}

    // Orders records by descriptor: the comparison of sorted poll sets.
    struct TEVBASE_API Compare {
        int operator()(const PollFd& a, const PollFd& b) const { return (a.fd > b.fd) - (a.fd < b.fd); }
    };
};

} // namespace SockIO

// Poll sets grow as TVarr<SockIO::PollFd>; new slots are empty records.
extern template void TVarr<SockIO::PollFd>::Init();
extern template void TVarr<SockIO::PollFd>::Extend(unsigned int);
extern template class TVarrCmp<SockIO::PollFd>;
extern template class TVarrRange<SockIO::PollFd>;

#endif
