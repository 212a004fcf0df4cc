// SPDX-License-Identifier: MIT
#include <sys/epoll.h>
#include <sys/event.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace {

constexpr std::uint64_t kPidBits = 32;

}  // namespace

int kqueue() { return ::epoll_create1(EPOLL_CLOEXEC); }

// Of processes that really run, by their descriptors, which are closed when they have been told of.
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const struct timespec* /*timeout*/) {
  for (int index = 0; index < changeCount; ++index) {
    const struct kevent& change = changes[index];
    if (change.filter != EVFILT_PROC || change.fflags != NOTE_EXIT) return errno = EINVAL, -1;
    const auto process = static_cast<int>(::syscall(SYS_pidfd_open, change.ident, 0));
    if (process < 0) return -1;
    epoll_event wanted{};
    wanted.events = EPOLLIN;
    wanted.data.u64 = static_cast<std::uint64_t>(process) << kPidBits | change.ident;
    if (::epoll_ctl(queue, EPOLL_CTL_ADD, process, &wanted) != 0) return -1;
  }
  if (eventCount == 0) return 0;
  epoll_event ended{};
  const int count = ::epoll_wait(queue, &ended, 1, -1);
  if (count < 1) return count;
  ::close(static_cast<int>(ended.data.u64 >> kPidBits));
  events[0].ident = static_cast<std::uint32_t>(ended.data.u64);
  events[0].filter = EVFILT_PROC;
  return 1;
}
