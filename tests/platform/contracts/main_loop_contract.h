// SPDX-License-Identifier: MIT
// What every main loop promises (platform/main_loop.h).
#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "platform/main_loop.h"

namespace nimbo {

/// A loop and the time it lives in: by default the real one, which passes while the loop runs.
class MainLoopHost {
 public:
  using Milliseconds = std::chrono::milliseconds;

  virtual ~MainLoopHost() = default;
  [[nodiscard]] virtual MainLoop& loop() = 0;
  [[nodiscard]] virtual std::chrono::duration<double> uptime() const {
    return std::chrono::steady_clock::now().time_since_epoch();
  }
  [[nodiscard]] virtual std::chrono::system_clock::time_point wallClock() const {
    return std::chrono::system_clock::now();
  }

  /// Whether it becomes so, looked at every millisecond for that long.
  [[nodiscard]] virtual bool runUntil(const std::function<bool()>& done, Milliseconds longest) {
    const auto end = uptime() + longest;
    const auto look = loop().every(Milliseconds(1), Milliseconds(0), [&] {
      if (done() || uptime() >= end) loop().quit();
    });
    loop().run();
    return done();
  }
  [[nodiscard]] bool runUntil(const std::function<bool()>& done) { return runUntil(done, std::chrono::seconds(5)); }
  void runFor(Milliseconds time) {
    (void)runUntil([] { return false; }, time);
  }
};

using MainLoopHostMaker = std::unique_ptr<MainLoopHost> (*)();

template <class Host>
std::unique_ptr<MainLoopHost> makeMainLoopHost() {
  return std::make_unique<Host>();
}

class MainLoopContract : public testing::TestWithParam<MainLoopHostMaker> {
 protected:
  using Milliseconds = std::chrono::milliseconds;

  void SetUp() override { ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0); }
  void TearDown() override {
    for (const int end : ends) ::close(end);
  }
  void hangUp() {
    ::close(ends[1]);
    ends[1] = -1;
  }
  void write() const { ASSERT_EQ(::write(ends[1], "x", 1), 1); }

  const std::unique_ptr<MainLoopHost> host = GetParam()();
  MainLoop& loop = host->loop();
  std::array<int, 2> ends{-1, -1};  ///< of a connection
};

TEST_P(MainLoopContract, PostedTasksRunInOrder) {
  std::vector<int> order;
  loop.post([&] { order.push_back(1); });
  loop.post([&] { order.push_back(2); });
  loop.post([&] { loop.quit(); });
  loop.run();
  EXPECT_EQ(order, (std::vector{1, 2}));
}

TEST_P(MainLoopContract, PostFromAnotherThreadRunsOnTheLoopsThread) {
  std::optional<std::thread::id> ranOn;
  std::thread poster([&] { loop.post([&] { ranOn = std::this_thread::get_id(); }); });
  EXPECT_TRUE(host->runUntil([&] { return ranOn.has_value(); }));
  poster.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_P(MainLoopContract, PostFromManyThreadsLosesNothing) {
  constexpr int kThreads = 4;
  constexpr int kEach = 250;
  int ran = 0;
  std::vector<std::thread> posters;
  for (int i = 0; i < kThreads; ++i) {
    posters.emplace_back([&] {
      for (int k = 0; k < kEach; ++k) loop.post([&] { ++ran; });
    });
  }
  EXPECT_TRUE(host->runUntil([&] { return ran == kThreads * kEach; }));
  for (auto& poster : posters) poster.join();
}

TEST_P(MainLoopContract, TaskPostedByATaskRunsLater) {
  bool nested = false;
  loop.post([&] {
    loop.post([&] { nested = true; });
    EXPECT_FALSE(nested);
  });
  EXPECT_TRUE(host->runUntil([&] { return nested; }));
}

TEST_P(MainLoopContract, RepeatingTimerFiresFirstAfterItsInterval) {
  const auto start = host->uptime();
  std::vector<std::chrono::duration<double>> fired;
  const auto timer = loop.every(Milliseconds(20), Milliseconds(1), [&] { fired.push_back(host->uptime() - start); });
  EXPECT_TRUE(host->runUntil([&] { return fired.size() >= 3; }));
  EXPECT_GE(fired.at(0), Milliseconds(19));
  EXPECT_GE(fired.at(2), Milliseconds(59));
}

TEST_P(MainLoopContract, DestroyedTimersNeverFire) {
  int fired = 0;
  {
    const auto repeating = loop.every(Milliseconds(5), Milliseconds(1), [&] { ++fired; });
    const auto once = loop.at(host->wallClock() + Milliseconds(5), Milliseconds(1), [&] { ++fired; });
  }
  host->runFor(Milliseconds(40));
  EXPECT_EQ(fired, 0);
}

TEST_P(MainLoopContract, TimerMayDestroyItselfWhileFiring) {
  int fired = 0;
  Subscription repeating;
  Subscription once;
  repeating = loop.every(Milliseconds(5), Milliseconds(1), [&] {
    ++fired;
    repeating.reset();
  });
  once = loop.at(host->wallClock() + Milliseconds(5), Milliseconds(1), [&] {
    ++fired;
    once.reset();
  });
  host->runFor(Milliseconds(40));
  EXPECT_EQ(fired, 2);
}

TEST_P(MainLoopContract, WallClockTimerFiresOnceAndNotBeforeItsTime) {
  const auto when = host->wallClock() + Milliseconds(30);
  std::vector<std::chrono::system_clock::time_point> fired;
  const auto timer = loop.at(when, Milliseconds(1), [&] { fired.push_back(host->wallClock()); });
  host->runFor(Milliseconds(90));
  ASSERT_EQ(fired.size(), 1U);
  EXPECT_GE(fired[0], when);
}

TEST_P(MainLoopContract, WallClockTimeAlreadyPastFiresOnTheNextTurn) {
  int fired = 0;
  const auto timer = loop.at(host->wallClock() - std::chrono::hours(1), Milliseconds(1), [&] { ++fired; });
  EXPECT_EQ(fired, 0);
  EXPECT_TRUE(host->runUntil([&] { return fired == 1; }));
}

TEST_P(MainLoopContract, WatchReportsEachReadableByte) {
  std::vector<char> received;
  const auto watch = loop.watch(ends[0], [&] {
    char byte = 0;
    ASSERT_EQ(::read(ends[0], &byte, 1), 1);
    received.push_back(byte);
  });
  write();
  EXPECT_TRUE(host->runUntil([&] { return received.size() == 1; }));
  write();
  EXPECT_TRUE(host->runUntil([&] { return received.size() == 2; }));
}

TEST_P(MainLoopContract, WatchReportsHangUpAndMayDestroyItself) {
  int reported = 0;
  Subscription watch;
  watch = loop.watch(ends[0], [&] {
    ++reported;
    watch.reset();
  });
  hangUp();
  host->runFor(Milliseconds(20));
  EXPECT_EQ(reported, 1);
}

TEST_P(MainLoopContract, DestroyedWatchReportsNothing) {
  auto watch = loop.watch(ends[0], [] { ADD_FAILURE(); });
  write();
  watch.reset();
  host->runFor(Milliseconds(20));
}

TEST_P(MainLoopContract, TurnIsTheSameWithinATaskAndAnotherAfterAWait) {
  std::uint64_t first = 0;
  std::uint64_t later = 0;
  loop.post([&] { first = loop.turn(); });
  const auto timer = loop.every(Milliseconds(10), Milliseconds(1), [&] {
    later = loop.turn();
    EXPECT_EQ(later, loop.turn());
  });
  EXPECT_TRUE(host->runUntil([&] { return first != 0 && later != 0; }));
  EXPECT_NE(first, later);
}

TEST_P(MainLoopContract, SubscriptionsAndTasksMayOutliveTheLoop) {
  auto gone = GetParam()();
  auto timer = gone->loop().every(Milliseconds(5), Milliseconds(1), [] { ADD_FAILURE(); });
  auto once = gone->loop().at(gone->wallClock(), Milliseconds(1), [] { ADD_FAILURE(); });
  auto watch = gone->loop().watch(ends[0], [] { ADD_FAILURE(); });
  gone->loop().post([] { ADD_FAILURE(); });
  gone.reset();
  timer.reset();
  once.reset();
  watch.reset();
}

/// Only where time passes by itself.
using RealTimeMainLoopContract = MainLoopContract;

TEST_P(RealTimeMainLoopContract, RepeatingTimerDropsBeatsMissedInAStall) {
  using SteadyClock = std::chrono::steady_clock;
  constexpr Milliseconds kBeat(10);
  int fired = 0;
  SteadyClock::time_point stallEnd;
  const auto timer = loop.every(kBeat, Milliseconds(1), [&] {
    if (++fired > 1) return;
    stallEnd = SteadyClock::now() + 6 * kBeat;
    while (SteadyClock::now() < stallEnd) std::this_thread::yield();
  });
  EXPECT_TRUE(host->runUntil([&] { return fired >= 3 && SteadyClock::now() > stallEnd + 3 * kBeat; }));
  EXPECT_LE(fired - 1, (SteadyClock::now() - stallEnd) / kBeat + 2);
}

TEST_P(RealTimeMainLoopContract, PostFromAnotherThreadWakesALoopThatWaits) {
  constexpr int kRounds = 200;
  std::atomic<int> ran = 0;
  std::atomic<bool> isOver = false;
  const auto limit = loop.every(std::chrono::seconds(5), Milliseconds(1), [&] { loop.quit(); });
  std::thread poster([&] {
    for (int round = 0; round < kRounds && !isOver; ++round) {
      loop.post([&] { ++ran; });
      while (ran <= round && !isOver) std::this_thread::yield();
    }
    loop.post([&] { loop.quit(); });
  });
  const auto start = host->uptime();
  loop.run();
  isOver = true;
  poster.join();
  EXPECT_LT(host->uptime() - start, std::chrono::seconds(5));
  EXPECT_EQ(ran, kRounds);
}

TEST_P(RealTimeMainLoopContract, RunsAgainAfterQuit) {
  for (int time = 0; time < 2; ++time) {
    loop.quit();
    loop.run();
    int ran = 0;
    loop.post([&] { ++ran; });
    EXPECT_TRUE(host->runUntil([&] { return ran == 1; }));
  }
}
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealTimeMainLoopContract);

}  // namespace nimbo
