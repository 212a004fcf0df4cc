// SPDX-License-Identifier: MIT
#include "platform/linux/loop/sd_event_main_loop.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

/// Ends a test whose event never comes; the test then fails on what it expected.
class MainLoopTest : public ::testing::Test {
 protected:
  void runBounded(milliseconds bound = milliseconds(5000)) {
    const auto limit = loop.every(bound, milliseconds(1), [this] {
      timedOut = true;
      loop.quit();
    });
    loop.run();
  }

  SdEventMainLoop loop;
  bool timedOut = false;
};

/// A toolkit loop in miniature: polls the descriptor and asks for pending work before it blocks.
TEST_F(MainLoopTest, PostedTasksRunInOrder) {
  std::vector<int> order;
  loop.post([&] { order.push_back(1); });
  loop.post([&] { order.push_back(2); });
  loop.post([&] { loop.quit(); });
  runBounded();
  EXPECT_EQ(order, (std::vector{1, 2}));
  EXPECT_FALSE(timedOut);
}

TEST_F(MainLoopTest, PostFromAnotherThreadRunsOnTheLoopsThread) {
  std::optional<std::thread::id> ranOn;
  std::thread poster([&] {
    loop.post([&] {
      ranOn = std::this_thread::get_id();
      loop.quit();
    });
  });
  runBounded();
  poster.join();
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(MainLoopTest, PostFromManyThreadsLosesNothing) {
  constexpr int kThreads = 4;
  constexpr int kEach = 250;
  int ran = 0;
  std::vector<std::thread> posters;
  for (int i = 0; i < kThreads; ++i) {
    posters.emplace_back([&] {
      for (int k = 0; k < kEach; ++k) {
        loop.post([&] {
          if (++ran == kThreads * kEach) loop.quit();
        });
      }
    });
  }
  runBounded();
  for (auto& poster : posters) poster.join();
  EXPECT_EQ(ran, kThreads * kEach);
}

TEST_F(MainLoopTest, TaskPostedByATaskRunsOnALaterTurn) {
  bool nested = false;
  loop.post([&] {
    loop.post([&] {
      nested = true;
      loop.quit();
    });
    EXPECT_FALSE(nested);
  });
  runBounded();
  EXPECT_TRUE(nested);
}

TEST_F(MainLoopTest, RepeatingTimerFiresFirstAfterItsInterval) {
  const auto start = steady_clock::now();
  std::vector<milliseconds> fired;
  const auto timer = loop.every(milliseconds(20), milliseconds(1), [&] {
    fired.push_back(std::chrono::duration_cast<milliseconds>(steady_clock::now() - start));
    if (fired.size() == 3) loop.quit();
  });
  runBounded();
  ASSERT_EQ(fired.size(), 3U);
  EXPECT_GE(fired[0], milliseconds(19));
  EXPECT_GE(fired[2], milliseconds(59));
}

TEST_F(MainLoopTest, RepeatingTimerDropsBeatsMissedInAStall) {
  int fired = 0;
  const auto timer = loop.every(milliseconds(10), milliseconds(1), [&] {
    if (++fired == 1) {
      const auto until = steady_clock::now() + milliseconds(60);
      while (steady_clock::now() < until) std::this_thread::yield();
    }
  });
  const auto end = loop.every(milliseconds(85), milliseconds(1), [&] { loop.quit(); });
  runBounded();
  EXPECT_GE(fired, 2);
  EXPECT_LE(fired, 4);
}

TEST_F(MainLoopTest, DestroyedTimerNeverFires) {
  int fired = 0;
  {
    const auto timer = loop.every(milliseconds(5), milliseconds(1), [&] { ++fired; });
  }
  const auto end = loop.every(milliseconds(40), milliseconds(1), [&] { loop.quit(); });
  runBounded();
  EXPECT_EQ(fired, 0);
}

TEST_F(MainLoopTest, TimerMayDestroyItselfWhileFiring) {
  int fired = 0;
  Subscription timer;
  timer = loop.every(milliseconds(5), milliseconds(1), [&] {
    ++fired;
    timer.reset();
  });
  const auto end = loop.every(milliseconds(40), milliseconds(1), [&] { loop.quit(); });
  runBounded();
  EXPECT_EQ(fired, 1);
}

TEST_F(MainLoopTest, WallClockTimerFiresOnceAndNotBeforeItsTime) {
  int fired = 0;
  const auto when = system_clock::now() + milliseconds(30);
  system_clock::time_point firedAt;
  const auto timer = loop.at(when, milliseconds(1), [&] {
    ++fired;
    firedAt = system_clock::now();
  });
  const auto end = loop.every(milliseconds(90), milliseconds(1), [&] { loop.quit(); });
  runBounded();
  EXPECT_EQ(fired, 1);
  EXPECT_GE(firedAt, when);
}

TEST_F(MainLoopTest, WallClockTimeAlreadyPastFiresOnTheNextTurn) {
  bool fired = false;
  const auto timer = loop.at(system_clock::now() - std::chrono::hours(1), milliseconds(1), [&] {
    fired = true;
    loop.quit();
  });
  runBounded();
  EXPECT_TRUE(fired);
}

TEST_F(MainLoopTest, WatchReportsReadableDescriptor) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  const UniqueFd near(ends[0]);
  const UniqueFd far(ends[1]);
  char received = 0;
  const auto watch = loop.watch(near.get(), [&] {
    EXPECT_EQ(::read(near.get(), &received, 1), 1);
    loop.quit();
  });
  ASSERT_EQ(::write(far.get(), "x", 1), 1);
  runBounded();
  EXPECT_EQ(received, 'x');
}

TEST_F(MainLoopTest, WatchReportsHangUp) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  const UniqueFd near(ends[0]);
  UniqueFd far(ends[1]);
  bool reported = false;
  Subscription watch;
  watch = loop.watch(near.get(), [&] {
    reported = true;
    watch.reset();
    loop.quit();
  });
  far.reset();
  runBounded();
  EXPECT_TRUE(reported);
}

}  // namespace
}  // namespace nimbo
