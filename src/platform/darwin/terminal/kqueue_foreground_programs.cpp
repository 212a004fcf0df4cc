// SPDX-License-Identifier: MIT
#include "platform/darwin/terminal/kqueue_foreground_programs.h"

#include <fmt/format.h>
#include <sys/event.h>

#include "base/text.h"
#include "platform/darwin/machine/libproc_processes.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {

Result<void, std::string> KqueueForegroundPrograms::waitFor(const std::vector<std::int32_t>& processes) {
  const UniqueFd queue(::kqueue());
  for (const std::int32_t process : processes) {
    const struct kevent end {
      static_cast<uintptr_t>(process), EVFILT_PROC, EV_ADD | EV_ONESHOT, NOTE_EXIT, 0, nullptr
    };
    if (::kevent(queue.get(), &end, 1, nullptr, 0, nullptr) != 0) {
      return tl::unexpected(fmt::format("There is no process {}.", process));
    }
  }
  for (std::size_t left = processes.size(); left > 0;) {
    struct kevent ended {};
    const int count = ::kevent(queue.get(), nullptr, 0, &ended, 1, nullptr);
    if (count > 0) --left;
    if (count < 0 && errno != EINTR) break;
  }
  return {};
}

std::string KqueueForegroundPrograms::nameOf(std::int32_t process) {
  return printableLine(LibprocProcessTable().name(process));
}

}  // namespace nimbo
