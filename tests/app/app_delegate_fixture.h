// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "support/control_events.h"
#include "support/fake_platform_services.h"
#include "support/fake_user_interface.h"

namespace nimbo {

inline constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
inline const StatusClick kClick{false, Rect{1000, 0, 24, 24}};

/// The whole program on a fake machine and desktop.
class AppDelegateTest : public ::testing::Test {
 protected:
  AppDelegateTest() {
    platform.host->total = kGibibyte * 16;
    platform.host->counts = MemoryCounts{.wired = kGibibyte * 4, .active = kGibibyte * 4};
    platform.processes->add(10, 200 << 20, "big");
  }

  void launch() { delegate->applicationDidFinishLaunching(); }

  void clickItem(const std::string& name, const StatusClick& click = kClick) {
    ASSERT_TRUE(platform.bar.click(name, click));
    platform.loop.runPosted();
  }

  void toggleAwake() { delegate->awake().toggle(std::nullopt); }

  /// Lets the widgets' file be written as often as somebody has asked for it.
  void finishWrites() {
    while (platform.utilities.runOne()) continue;
    platform.loop.runPosted();
  }

  /// Null before the dashboard was first opened.
  FakeMenuWindow* window() const { return interface.windows().empty() ? nullptr : interface.windows().back(); }
  bool dashboardVisible() const { return window() != nullptr && window()->visible(); }
  const DashboardContent& content() const { return window()->content(); }
  const ResourcesContent& resources() const { return std::get<ResourcesContent>(content().page); }

  FakePlatformServices platform;
  Settings settings{platform.defaults};
  FakeUserInterface interface;
  std::unique_ptr<AppDelegate> delegate =
      std::make_unique<AppDelegate>(platform, interface, settings, AppDelegate::Audience::user);
};

}  // namespace nimbo
