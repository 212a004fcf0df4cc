// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/pidfd_foreground_programs.h"

#include <fmt/format.h>
#include <poll.h>

#include <cerrno>

#include "base/text.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/linux/machine/session_spawn.h"

namespace nimbo {

Result<void, std::string> PidfdForegroundPrograms::waitFor(const std::vector<std::int32_t>& processes) {
  std::vector<UniqueFd> open;
  open.reserve(processes.size());
  for (const std::int32_t process : processes) {
    open.push_back(processDescriptor(process));
    if (!open.back()) return tl::unexpected(fmt::format("There is no process {}.", process));
  }
  for (const UniqueFd& descriptor : open) {
    pollfd wait{descriptor.get(), POLLIN, 0};
    while (::poll(&wait, 1, -1) < 0 && errno == EINTR) {
    }
  }
  return {};
}

std::string PidfdForegroundPrograms::nameOf(std::int32_t process) {
  return printableLine(readAttributeLine(fmt::format("/proc/{}/comm", process)));
}

}  // namespace nimbo
