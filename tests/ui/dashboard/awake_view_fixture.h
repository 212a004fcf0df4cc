// SPDX-License-Identifier: MIT
#pragma once

#include "awake/awake_manager.h"
#include "support/fake_assertion_client.h"
#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_display_power.h"
#include "support/fake_main_loop.h"
#include "support/fake_power_sources.h"
#include "support/fake_user_defaults.h"
#include "ui/dashboard/awake_view.h"

namespace nimbo {

/// What a Keep Awake page stands on, with a real session behind it.
struct AwakeViewWorld {
  AwakeViewWorld() {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
    loop.setWallClock(clock.now());
  }

  FakeMainLoop loop;
  FakeClock clock;
  FakeDates dates;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  Settings settings{defaults};
  FakeAssertionClient assertions;
  FakePowerSources batteries;
  FakeDisplayPower displayPower;
  AwakeManager manager{{loop, clock, assertions, batteries, displayPower}};

  [[nodiscard]] AwakeView::Services viewServices() { return {settings, clock, dates}; }
};

}  // namespace nimbo
