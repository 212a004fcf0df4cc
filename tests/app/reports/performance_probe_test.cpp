// SPDX-License-Identifier: MIT
#include "app/reports/performance_probe.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

constexpr std::uint64_t kMebibyte = 1048576;

class PerformanceProbeTest : public AppDelegateTest {
 protected:
  void start() {
    launch();
    probe.start();
  }
  /// Lets the stage's time pass with what runs in the background meanwhile.
  void pass(std::chrono::milliseconds time) {
    platform.loop.advance(time / 2);
    while (platform.utilities.runOne()) platform.loop.runPosted();
    platform.loop.advance(time - time / 2);
  }

  Lines lines;
  Lines complaints;
  PerformanceProbe probe{platform, *delegate, [this](const std::string& line) { lines.push_back(line); },
                         [this](const std::string& line) { complaints.push_back(line); }};
};

TEST_F(PerformanceProbeTest, StagesComeInOrderWithTheirTimes) {
  platform.self.now = ResourceUsage{kMebibyte, 6 * kMebibyte, 10ms};
  start();
  pass(1999ms);
  EXPECT_TRUE(lines.empty());
  pass(1ms);
  EXPECT_EQ(lines, Lines{"Idle, dashboard unopened: footprint 1.00 MiB; RSS 6.00 MiB"});
  platform.self.spend(60ms);
  pass(6s);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[1], "Idle CPU: 1.000% of one core over 6.0s");
  platform.self.now = ResourceUsage{kMebibyte * 5 / 2, 33 * kMebibyte, 90ms};
  pass(1s);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[2], "Dashboard and process list loaded offscreen: footprint 2.50 MiB; RSS 33.00 MiB");
  EXPECT_TRUE(delegate->awake().isActive());
  EXPECT_FALSE(platform.loop.hasQuit());
  pass(1s);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[3], "Background awake session active: footprint 2.50 MiB; RSS 33.00 MiB");
  EXPECT_TRUE(platform.loop.hasQuit());
  EXPECT_FALSE(probe.sessionFailed());
  EXPECT_TRUE(complaints.empty());
}

TEST_F(PerformanceProbeTest, NothingIsLoadedBeforeItsStage) {
  start();
  pass(7999ms);
  EXPECT_EQ(window(), nullptr);
  EXPECT_TRUE(platform.assertions.held().empty());
}

TEST_F(PerformanceProbeTest, DashboardIsFilledButNotShown) {
  start();
  pass(8s);
  pass(1s);
  ASSERT_NE(window(), nullptr);
  EXPECT_EQ(window()->shows(), 0);
  EXPECT_EQ(std::get<ResourcesContent>(content().page).hero.text, "50%");
  ASSERT_FALSE(std::get<ResourcesContent>(content().page).processes.labels.empty());
  EXPECT_EQ(std::get<ResourcesContent>(content().page).processes.labels[0].text, "big");
}

TEST_F(PerformanceProbeTest, SessionLetsTheDisplaySleep) {
  settings.setAwakeDisplayOn(true);
  start();
  pass(9s);
  EXPECT_TRUE(platform.assertions.holds(kPreventSystemSleep));
  EXPECT_FALSE(platform.assertions.holds(kPreventDisplaySleep));
}

TEST_F(PerformanceProbeTest, EndsWithoutAskingAboutItsOwnSession) {
  start();
  pass(10s);
  EXPECT_TRUE(platform.loop.hasQuit());
  EXPECT_TRUE(interface.alerts().empty());
}

TEST_F(PerformanceProbeTest, WhatCannotBeDoneIsToldAndTheRunGoesOn) {
  platform.assertions.refuse(kPreventSystemSleep, 95);
  start();
  pass(10s);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[3].substr(0, lines[3].find(':')), "Background awake session could not be held");
  EXPECT_TRUE(probe.sessionFailed());
  EXPECT_EQ(complaints, (Lines{"no awake session could be started: macOS couldn’t keep your Mac awake (error 95). "
                               "Please try again."}));
}

TEST_F(PerformanceProbeTest, MissingFiguresAreTold) {
  platform.self.now.reset();
  start();
  pass(2s);
  EXPECT_EQ(complaints.at(0), "the system does not tell what this process costs");
}

TEST(PerformanceProbeRun, UsesADomainOfItsOwnThatIsGoneAfterwards) {
  FakePlatformServices platform;
  FakeUserInterface windows;
  platform.domains.domains["com.quellwerk.Nimbo"] = {{"refreshInterval", 30}};
  int seen = 0;
  for (int run = 0; run < 2; ++run) {
    platform.loop.post([&] {
      platform.domains.domains[platform.suites.back()] = {{"lastDashboardTab", "memory"}};
      ++seen;
    });
    EXPECT_EQ(runPerformanceProbe(
                  platform, windows, [](const auto&) {}, [](const auto&) {}),
              0);
  }
  EXPECT_EQ(seen, 2);
  EXPECT_EQ(platform.domains.domains.size(), 1U);
  EXPECT_EQ(platform.domains.domains["com.quellwerk.Nimbo"], (nlohmann::json{{"refreshInterval", 30}}));
  ASSERT_EQ(platform.suites.size(), 2U);
  EXPECT_NE(platform.suites[0], platform.suites[1]);
  for (const auto& suite : platform.suites) EXPECT_TRUE(suite.starts_with("Nimbo.Performance.")) << suite;
}

TEST(PerformanceProbeRun, DomainThatCannotBeMadeIsFatal) {
  FakePlatformServices platform;
  FakeUserInterface windows;
  platform.keepsOtherDomains = false;
  Lines complaints;
  EXPECT_EQ(
      runPerformanceProbe(
          platform, windows, [](const auto&) { FAIL(); }, [&](const std::string& line) { complaints.push_back(line); }),
      1);
  EXPECT_EQ(complaints, Lines{"the settings of the run cannot be kept"});
  EXPECT_EQ(platform.loop.runs(), 0);
}

}  // namespace
}  // namespace nimbo
