// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac_wording.h"
#include "support/fake_assertion_client.h"
#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_display_power.h"
#include "support/fake_main_loop.h"
#include "support/fake_power_sources.h"
#include "support/fake_user_defaults.h"
#include "ui/dashboard/dashboard_pages.h"

namespace nimbo {

/// What a dashboard tells of, with a real session behind its Keep Awake page.
struct DashboardWorld {
  /// `words` outlive it.
  explicit DashboardWorld(const Wording& words = macWording()) : wording(words) {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
    loop.setWallClock(clock.now());
  }

  const Wording& wording;
  FakeMainLoop loop;
  FakeClock clock;
  FakeDates dates;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  Settings settings{defaults};
  FakeAssertionClient assertions;
  FakePowerSources batteries;
  FakeDisplayPower displayPower;
  AwakeManager manager{{loop, clock, assertions, batteries, displayPower, settings, wording}};
  SystemReadings readings;
  UsageStates usage;

  [[nodiscard]] DashboardSources sources() { return {settings, readings, manager, usage, clock, dates, wording}; }
};

}  // namespace nimbo
