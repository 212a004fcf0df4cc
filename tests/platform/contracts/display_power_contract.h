// SPDX-License-Identifier: MIT
// What every way to turn the display off promises (platform/display_power.h).
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "platform/display_power.h"

namespace nimbo {

/// A desktop that turns its display off when it is asked to.
struct DisplayPowerHost {
  virtual ~DisplayPowerHost() = default;
  [[nodiscard]] virtual DisplayPower& power() = 0;
  virtual void destroyPower() = 0;
  /// Instead it refuses, or has no way at all; said before the first request.
  virtual void refuse() = 0;
  virtual void offerNothing() = 0;
  /// What has been asked for is carried out or refused; then input turns the display on again.
  virtual void settle() = 0;
  [[nodiscard]] virtual int timesDark() const = 0;
};

using DisplayPowerHostMaker = std::unique_ptr<DisplayPowerHost> (*)();

template <class Host>
std::unique_ptr<DisplayPowerHost> makeDisplayPowerHost() {
  return std::make_unique<Host>();
}

class DisplayPowerContract : public testing::TestWithParam<DisplayPowerHostMaker> {
 protected:
  [[nodiscard]] Subscription ask(const std::function<void()>& failed = {}) {
    auto request = host->power().sleepNow([this, failed] {
      ++failures;
      if (failed) failed();
    });
    EXPECT_TRUE(request);
    return request ? std::move(*request) : Subscription();
  }

  const std::unique_ptr<DisplayPowerHost> host = GetParam()();
  int failures = 0;
};

TEST_P(DisplayPowerContract, EachRequestIsCarriedOutOnceAndTellsNothing) {
  for (int turn = 1; turn <= 2; ++turn) {
    const auto request = ask();
    host->settle();
    host->settle();
    EXPECT_EQ(host->timesDark(), turn);
  }
  EXPECT_EQ(failures, 0);
}

TEST_P(DisplayPowerContract, RequestThatReplacesAnotherIsCarriedOut) {
  auto request = ask();
  request = ask();
  host->settle();
  EXPECT_GE(host->timesDark(), 1);
  EXPECT_EQ(failures, 0);
}

TEST_P(DisplayPowerContract, RefusalIsToldOnceAndLater) {
  host->refuse();
  const auto request = ask();
  EXPECT_EQ(failures, 0);
  host->settle();
  EXPECT_EQ(failures, 1);
  host->settle();
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(host->timesDark(), 0);
}

TEST_P(DisplayPowerContract, RefusalIsNotToldToADroppedRequest) {
  host->refuse();
  ask().reset();
  host->settle();
  EXPECT_EQ(failures, 0);
}

TEST_P(DisplayPowerContract, RefusalMayDropItsOwnRequestAndAnother) {
  host->refuse();
  Subscription one;
  Subscription other;
  const auto dropBoth = [&] {
    one.reset();
    other.reset();
  };
  one = ask(dropBoth);
  other = ask(dropBoth);
  host->settle();
  EXPECT_EQ(failures, 1);
}

TEST_P(DisplayPowerContract, WhereThereIsNoWayTheRequestSaysSoAtOnce) {
  host->offerNothing();
  const auto request = host->power().sleepNow([this] { ++failures; });
  ASSERT_FALSE(request);
  EXPECT_TRUE(request.error().description.ends_with('.'));
  host->settle();
  EXPECT_EQ(failures, 0);
}

TEST_P(DisplayPowerContract, RequestMayOutliveWhatItWasMadeTo) {
  host->refuse();
  auto request = ask();
  host->destroyPower();
  request.reset();
  host->settle();
  EXPECT_EQ(failures, 0);
}

/// Only where a request waits before it is carried out.
using WaitingDisplayPowerContract = DisplayPowerContract;

TEST_P(WaitingDisplayPowerContract, RequestDroppedInTimeIsNotCarriedOut) {
  ask().reset();
  host->settle();
  EXPECT_EQ(host->timesDark(), 0);
  EXPECT_EQ(failures, 0);
}

}  // namespace nimbo
