// SPDX-License-Identifier: MIT
#include "platform/linux/tray/registration_pacer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "platform/linux/loop/sd_event_main_loop.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class RegistrationPacerTest : public ::testing::Test {
 protected:
  std::function<void()> turn(int number) {
    return [this, number] {
      order.push_back(number);
      times.push_back(steady_clock::now());
    };
  }

  void runFor(milliseconds duration) {
    const auto end = loop.every(duration, milliseconds(1), [this] { loop.quit(); });
    loop.run();
  }

  SdEventMainLoop loop;
  RegistrationPacer pacer{loop};
  std::vector<int> order;
  std::vector<steady_clock::time_point> times;
};

TEST_F(RegistrationPacerTest, FirstOneHasItsTurnAtOnce) {
  const auto first = pacer.request(turn(1));
  EXPECT_EQ(order, std::vector{1});
}

TEST_F(RegistrationPacerTest, OthersFollowInOrderEachAfterAPause) {
  const auto first = pacer.request(turn(1));
  const auto second = pacer.request(turn(2));
  const auto third = pacer.request(turn(3));
  EXPECT_EQ(order, std::vector{1});
  runFor(milliseconds(900));
  ASSERT_EQ(order, (std::vector{1, 2, 3}));
  EXPECT_GE(times[1] - times[0], milliseconds(249));
  EXPECT_GE(times[2] - times[1], milliseconds(249));
}

TEST_F(RegistrationPacerTest, TurnGivenUpIsSkippedWithoutAPause) {
  const auto first = pacer.request(turn(1));
  auto second = pacer.request(turn(2));
  const auto third = pacer.request(turn(3));
  second.reset();
  runFor(milliseconds(500));
  EXPECT_EQ(order, (std::vector{1, 3}));
}

TEST_F(RegistrationPacerTest, OneThatComesLaterHasItsTurnAtOnce) {
  const auto first = pacer.request(turn(1));
  runFor(milliseconds(400));
  const auto second = pacer.request(turn(2));
  EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST_F(RegistrationPacerTest, TurnMayAskAgain) {
  Subscription again;
  const auto first = pacer.request(turn(1));
  const auto second = pacer.request([&] {
    order.push_back(2);
    again = pacer.request(turn(3));
  });
  runFor(milliseconds(900));
  EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

}  // namespace
}  // namespace nimbo
