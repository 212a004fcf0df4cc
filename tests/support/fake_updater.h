// SPDX-License-Identifier: MIT
#pragma once

#include "platform/updater.h"

namespace nimbo {

/// An updater that only counts what it is asked for.
class FakeUpdater final : public Updater {
 public:
  [[nodiscard]] bool canCheckForUpdates() const override { return canCheck; }
  void checkForUpdates() override { ++checks; }
  [[nodiscard]] bool automaticallyChecksForUpdates() const override { return automatic; }
  void setAutomaticallyChecksForUpdates(bool on) override { automatic = on; }

  bool canCheck = true;
  bool automatic = false;
  int checks = 0;
};

}  // namespace nimbo
