// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "awake/awake_manager.h"
#include "platform/mac_wording.h"
#include "support/fake_assertion_client.h"
#include "support/fake_clock.h"
#include "support/fake_display_power.h"
#include "support/fake_main_loop.h"
#include "support/fake_power_sources.h"
#include "support/fake_user_defaults.h"

namespace nimbo {

/// A manager on a machine in memory at 13:00 of a day, whose clock and loop go together.
class AwakeManagerTest : public testing::Test {
 protected:
  using Time = AwakeManager::Time;
  using Log = std::vector<std::string>;

  AwakeManagerTest() {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
    setWallClock(at(13, 0));
    manager.onChange = [this] { told.push_back(manager.message()); };
  }

  /// That time of the day, or of the next one from 24 hours on.
  [[nodiscard]] static Time at(int hour, int minute) {
    using namespace std::chrono;
    constexpr seconds kMidnight{1795219200};  // of 2026-11-21
    return Time(kMidnight + hours(hour) + minutes(minute));
  }

  void setWallClock(Time now) {
    clock.setNow(now);
    loop.setWallClock(now);
  }
  /// The machine sleeps and wakes at that time.
  void sleepUntil(Time wake) {
    clock.setNow(wake);
    loop.sleep(std::chrono::duration_cast<std::chrono::milliseconds>(wake - loop.wallClock()));
  }
  void passUntil(Time end) { loop.advance(std::chrono::ceil<std::chrono::milliseconds>(end - loop.wallClock())); }

  bool start(std::optional<Time> until = {}, bool keepDisplayOn = false) {
    return manager.start(until, keepDisplayOn, clock.now());
  }
  /// The end that a timer waits for; absent when there is no timer.
  [[nodiscard]] std::optional<Time> timerEnd() const {
    const auto timers = loop.wallTimers();
    EXPECT_LE(timers.size(), 1U);
    return timers.empty() ? std::nullopt : std::optional(timers[0].when);
  }

  FakeMainLoop loop;
  FakeClock clock;
  FakeAssertionClient client;
  FakePowerSources sources;
  FakeDisplayPower display;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "test"};
  Settings settings{defaults};
  AwakeManager manager{{loop, clock, client, sources, display, settings, macWording()}};
  Log told;  ///< the message at each change
};

}  // namespace nimbo
