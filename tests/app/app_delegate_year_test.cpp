// SPDX-License-Identifier: MIT
// The program through a year of suspends and of a wall clock that others set.
#include <gtest/gtest.h>

#include <random>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using std::chrono::minutes;
using WallTime = std::chrono::system_clock::time_point;

class YearTest : public AppDelegateTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  YearTest() {
    settings.setUsageEnabled(UsageProvider::codex, true);
    settings.setRefreshInterval(30s);
    platform.secretFiles.texts["/home/u/.codex/auth.json"] = R"({"tokens":{"access_token":"secret"}})";
  }

  int upTo(int most) { return std::uniform_int_distribution(0, most)(chance_); }
  WallTime now() const { return platform.clock->now(); }

  void suspend(minutes duration) {
    platform.power.sleep();
    platform.sleep(duration);
    platform.power.wake();
    passed_ += duration;
  }

  void startSession() {
    until_ = upTo(4) == 0 ? std::nullopt : std::optional(now() + minutes(1 + upTo(300)));
    ASSERT_TRUE(delegate->awake().start(until_, false, now()));
    started_ = true;
  }

  /// Runs for that long; the provider answers within ten seconds.
  void run(minutes duration) {
    for (std::chrono::seconds left = duration; left > 0s; left -= 10s) {
      platform.loop.advance(10s);
      while (platform.background.runOne()) platform.loop.runPosted();
      platform.network.answer(200,
                              R"({"rate_limit":{"primary_window":{"used_percent":25,"limit_window_seconds":18000}}})");
      platform.loop.runPosted();
    }
    passed_ += duration;
  }

  void expectAllIsWell(minutes ran, std::size_t reads) {
    started_ = started_ && (!until_ || now() < *until_);
    EXPECT_EQ(delegate->awake().isActive(), started_);
    EXPECT_EQ(platform.assertions.holds("PreventUserIdleSystemSleep"), started_);
    const std::uint64_t used = (platform.host->counts->wired + platform.host->counts->active) / kGibibyte;
    const std::string toolTip = platform.bar.item("nimbo-memory")->content.toolTip;
    EXPECT_NE(toolTip.find(" · " + std::to_string(used) + ".0 GB used of 16.0 GB"), std::string::npos) << toolTip;
    // Every five minutes, and once more where the clock was set or the machine has slept.
    EXPECT_GE(reads, ran > 6min ? 1U : 0U);
    EXPECT_LE(reads, static_cast<std::size_t>(ran / 5min) + 2);
    EXPECT_LE(platform.loop.repeatingTimers().size() + platform.loop.wallTimers().size(), 3U);
  }

  std::mt19937 chance_{GetParam()};
  std::chrono::minutes passed_{0};
  bool started_ = false;
  std::optional<WallTime> until_;
};

TEST_P(YearTest, ItemsSessionsAndReadsOutliveSuspendsAndAClockThatIsSet) {
  launch();
  while (passed_ < std::chrono::years(1) && !HasFailure()) {
    const std::size_t reads = platform.network.requests.size();
    platform.host->counts->wired = kGibibyte * static_cast<std::uint64_t>(1 + upTo(7));
    switch (upTo(5)) {
      case 0:
        suspend(minutes(upTo(20)));
        break;
      case 1:
        suspend(minutes(upTo(4 * 24 * 60)));
        break;
      case 2:
        platform.setWallClock(now() + minutes(upTo(120) - 60));
        break;
      case 3:
        platform.setWallClock(now() + std::chrono::days(upTo(800) - 400));
        break;
      case 4:
        startSession();
        break;
      default:
        delegate->awake().stopByUser();
        started_ = false;
    }
    const minutes ran(1 + upTo(14));
    run(ran);
    expectAllIsWell(ran, platform.network.requests.size() - reads);
  }
}

INSTANTIATE_TEST_SUITE_P(Chances, YearTest, ::testing::Range(1U, 5U));

}  // namespace
}  // namespace nimbo
