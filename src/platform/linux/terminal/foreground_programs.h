// SPDX-License-Identifier: MIT
#pragma once

#include "platform/foreground_programs.h"

namespace nimbo {

/// Those of this user's terminal, by posix_spawn and process descriptors; colours as https://no-color.org says. Any
/// thread.
class UserForegroundPrograms final : public ForegroundPrograms {
 public:
  [[nodiscard]] Result<int, std::string> run(const std::vector<std::string>& command) override;
  void terminate() override;
  [[nodiscard]] Result<void, std::string> waitFor(const std::vector<std::int32_t>& processes) override;
  [[nodiscard]] bool isReadFor(std::chrono::seconds time) override;
  [[nodiscard]] bool showsColours() override;
  [[nodiscard]] std::string nameOf(std::int32_t process) override;
};

}  // namespace nimbo
