// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tray_watch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/bus/sd_bus_connection.h"
#include "support/fake_main_loop.h"
#include "support/services/bus_peer.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class TrayWatchTest : public ::testing::Test {
 protected:
  /// An item that notes its turns as its number, and the end of a tray as minus its number.
  std::function<void(const std::string& tray)> item(int number) {
    return [this, number](const std::string& owner) {
      turns.push_back(owner.empty() ? -number : number);
      times.push_back(steady_clock::now());
    };
  }

  void startTray() { tray.emplace(loop, bus.address()).own("org.kde.StatusNotifierWatcher"); }

  bool waitForTurns(std::size_t count) {
    return loop.runUntil([&] { return turns.size() >= count; });
  }

  void runFor(milliseconds duration) {
    const auto end = steady_clock::now() + duration;
    const auto beat = loop.main().every(milliseconds(10), milliseconds(0), [] {});
    EXPECT_TRUE(loop.runUntil([&] { return steady_clock::now() >= end; }));
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.main().event(), bus.address()};
  TrayWatch watch{session.get(), loop.main()};
  std::optional<BusPeer> tray;
  std::vector<int> turns;
  std::vector<steady_clock::time_point> times;
};

TEST_F(TrayWatchTest, ItemsHaveTheirTurnsInOrderEachAfterAPause) {
  const auto first = watch.attend(item(1));
  const auto second = watch.attend(item(2));
  const auto third = watch.attend(item(3));
  startTray();
  ASSERT_TRUE(waitForTurns(3));
  EXPECT_EQ(turns, (std::vector{1, 2, 3}));
  EXPECT_GE(times[1] - times[0], milliseconds(249));
  EXPECT_GE(times[2] - times[1], milliseconds(249));
}

TEST_F(TrayWatchTest, ItemThatIsMadeWhileATrayIsThereHasItsTurnAtOnce) {
  const auto first = watch.attend(item(1));
  startTray();
  ASSERT_TRUE(waitForTurns(1));
  runFor(milliseconds(350));
  const auto second = watch.attend(item(2));
  EXPECT_EQ(turns, (std::vector{1, 2}));
}

TEST_F(TrayWatchTest, ItemThatLeavesIsSkippedWithoutAPause) {
  const auto first = watch.attend(item(1));
  auto second = watch.attend(item(2));
  const auto third = watch.attend(item(3));
  startTray();
  ASSERT_TRUE(waitForTurns(1));
  second.reset();
  ASSERT_TRUE(waitForTurns(2));
  EXPECT_EQ(turns, (std::vector{1, 3}));
  EXPECT_LT(times[1] - times[0], milliseconds(450));
}

TEST_F(TrayWatchTest, ItemMayLeaveInItsTurnAndAnotherCome) {
  Subscription first;
  Subscription second;
  first = watch.attend([&](const std::string&) {
    turns.push_back(1);
    second = watch.attend(item(2));
    first.reset();
  });
  startTray();
  ASSERT_TRUE(waitForTurns(2));
  EXPECT_EQ(turns, (std::vector{1, 2}));
}

TEST_F(TrayWatchTest, TrayThatRestartsGetsAllOfThemAgainInOrder) {
  const auto first = watch.attend(item(1));
  const auto second = watch.attend(item(2));
  startTray();
  ASSERT_TRUE(waitForTurns(2));
  tray.reset();
  ASSERT_TRUE(waitForTurns(4));
  startTray();
  ASSERT_TRUE(waitForTurns(6));
  EXPECT_EQ(turns, (std::vector{1, 2, -1, -2, 1, 2}));
}

TEST_F(TrayWatchTest, AbsenceIsToldOnceAfterAFewSeconds) {
  FakeMainLoop time;
  TrayWatch lonely(session.get(), time);
  int told = 0;
  lonely.onAbsence([&] { ++told; });
  time.advance(milliseconds(4999));
  EXPECT_EQ(told, 0);
  time.advance(std::chrono::minutes(1));
  EXPECT_EQ(told, 1);
}

TEST_F(TrayWatchTest, TrayThatComesInTimeIsNotMissed) {
  FakeMainLoop time;
  TrayWatch lucky(session.get(), time);
  int told = 0;
  lucky.onAbsence([&] { ++told; });
  const auto first = lucky.attend(item(1));
  startTray();
  ASSERT_TRUE(waitForTurns(1));
  lucky.onAbsence([&] { ++told; });
  time.advance(std::chrono::minutes(1));
  EXPECT_EQ(told, 0);
}

}  // namespace
}  // namespace nimbo
