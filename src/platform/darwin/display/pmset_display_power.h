// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <memory>
#include <vector>

#include "platform/display_power.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Runs the system's own tool for it. A request that is taken back ends the tool if it still runs.
class PmsetDisplayPower final : public DisplayPower {
 public:
  /// `loop` outlives it.
  explicit PmsetDisplayPower(MainLoop& loop, std::string tool = "/usr/bin/pmset")
      : loop_(loop), tool_(std::move(tool)) {}

  [[nodiscard]] Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) override;

 private:
  struct Run {
    pid_t pid;
    std::function<void()> failed;  // empty once the request has been taken back
  };
  void look();

  MainLoop& loop_;
  const std::string tool_;
  std::vector<std::shared_ptr<Run>> runs_;
  Subscription timer_;  // while something runs
};

}  // namespace nimbo
