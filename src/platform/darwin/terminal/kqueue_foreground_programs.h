// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/terminal/foreground_programs.h"

namespace nimbo {

/// With the kernel's events of processes, and its names.
class KqueueForegroundPrograms final : public UserForegroundPrograms {
 public:
  using UserForegroundPrograms::UserForegroundPrograms;

  [[nodiscard]] Result<void, std::string> waitFor(const std::vector<std::int32_t>& processes) override;
  [[nodiscard]] std::string nameOf(std::int32_t process) override;
};

}  // namespace nimbo
