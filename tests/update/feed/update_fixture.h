// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "support/fake_clock.h"
#include "support/fake_main_loop.h"
#include "support/fake_update_windows.h"
#include "support/fake_user_defaults.h"
#include "update/scheduled_updater.h"

namespace nimbo {

/// Time, settings and windows; the clock follows the loop.
class UpdateTimeTest : public ::testing::Test {
 protected:
  UpdateTimeTest() {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
    loop.setWallClock(clock.now());
  }

  void setWallClock(std::chrono::system_clock::time_point now) {
    clock.setNow(now);
    loop.setWallClock(now);
  }

  [[nodiscard]] std::int64_t now() const {
    return std::chrono::floor<std::chrono::seconds>(clock.now().time_since_epoch()).count();
  }
  void storeAutomatic(bool on) { defaults.set("SUEnableAutomaticChecks", on); }
  void storeLastCheck(std::int64_t time) { defaults.set("SULastCheckTime", time); }
  [[nodiscard]] std::optional<std::int64_t> lastCheck() const { return defaults.integer("SULastCheckTime"); }

  FakeClock clock;
  FakeMainLoop loop;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  FakeUpdateWindows windows;
  ScheduledUpdater::Services services{defaults, clock, loop, windows};
};

}  // namespace nimbo
