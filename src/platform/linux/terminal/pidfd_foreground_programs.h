// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/terminal/foreground_programs.h"

namespace nimbo {

/// With process descriptors and names of /proc.
class PidfdForegroundPrograms final : public UserForegroundPrograms {
 public:
  using UserForegroundPrograms::UserForegroundPrograms;

  [[nodiscard]] Result<void, std::string> waitFor(const std::vector<std::int32_t>& processes) override;
  [[nodiscard]] std::string nameOf(std::int32_t process) override;
};

}  // namespace nimbo
