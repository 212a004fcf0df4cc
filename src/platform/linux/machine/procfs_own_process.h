// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/own_process.h"

namespace nimbo {

/// What /proc and the kernel's accounting say of the running program.
class ProcfsOwnProcess final : public OwnProcess {
 public:
  explicit ProcfsOwnProcess(const std::string& procRoot = "/proc");

  /// The footprint is private memory with what is swapped out of it; memory as it is now, CPU time of
  /// finished threads included.
  [[nodiscard]] std::optional<ResourceUsage> usage() const override;

 private:
  const std::string status_;
};

}  // namespace nimbo
