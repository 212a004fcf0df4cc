// SPDX-License-Identifier: MIT
#pragma once

#include "platform/foreground_programs.h"

namespace nimbo {

/// Those of this user's terminal, by posix_spawn; colours as https://no-color.org says. How others' processes are
/// waited for and called is each system's own. Any thread.
class UserForegroundPrograms : public ForegroundPrograms {
 public:
  /// What programs get.
  explicit UserForegroundPrograms(char* const* environment) : environment_(environment) {}

  [[nodiscard]] Result<int, std::string> run(const std::vector<std::string>& command) override;
  void terminate() override;
  [[nodiscard]] bool isReadFor(std::chrono::seconds time) override;
  [[nodiscard]] bool showsColours() override;

 private:
  char* const* const environment_;
};

}  // namespace nimbo
