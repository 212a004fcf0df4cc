// SPDX-License-Identifier: MIT
#include "platform/posix/loop/retry.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/fake_main_loop.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

struct RetryTest : ::testing::Test {
  void again() {
    retry.later([this] {
      ++tried;
      if (failing) again();
    });
  }

  FakeMainLoop timers;
  Retry retry{timers};
  bool failing = true;
  int tried = 0;
};

TEST_F(RetryTest, DistancesGrowToFiveMinutes) {
  again();
  int before = 0;
  for (const auto distance : {2s, 4s, 8s, 16s, 32s, 64s, 128s, 256s, 300s, 300s}) {
    timers.advance(distance - 1ms);
    EXPECT_EQ(tried, before) << distance.count();
    timers.advance(1ms);
    EXPECT_EQ(tried, ++before) << distance.count();
  }
}

TEST_F(RetryTest, OneThatDoesNotFailIsTheLast) {
  failing = false;
  again();
  timers.advance(1h);
  EXPECT_EQ(tried, 1);
  EXPECT_TRUE(timers.repeatingTimers().empty());
}

TEST_F(RetryTest, SuccessEndsTheWaitAndLetsTheDistancesBeginAnew) {
  again();
  timers.advance(6s);
  retry.succeeded();
  timers.advance(1h);
  EXPECT_EQ(tried, 2);
  again();
  timers.advance(2s);
  EXPECT_EQ(tried, 3);
}

}  // namespace
}  // namespace nimbo
