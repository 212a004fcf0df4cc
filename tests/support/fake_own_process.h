// SPDX-License-Identifier: MIT
#pragma once

#include "platform/process_table.h"

namespace nimbo {

/// A process that costs what the test says.
class FakeOwnProcess {
 public:
  [[nodiscard]] std::optional<ResourceUsage> usage() const {
    ++readings;
    return now;
  }

  /// Works for that long; nothing happens while the system does not tell.
  void spend(std::chrono::nanoseconds cpuTime) {
    if (now) now->cpuTime += cpuTime;
  }

  std::optional<ResourceUsage> now = ResourceUsage{12 * kMebibyte, 40 * kMebibyte, std::chrono::milliseconds(80)};
  mutable int readings = 0;

 private:
  static constexpr std::uint64_t kMebibyte = 1048576;
};

}  // namespace nimbo
