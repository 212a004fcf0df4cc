// SPDX-License-Identifier: MIT
#include "platform/posix/loop/background_threads.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <thread>

#include "platform/linux/loop/utility_thread.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

TEST(BackgroundThreads, WorkRunsElsewhereAtLowPriority) {
  BackgroundThreads threads(makeUtilityThread);
  std::promise<std::pair<std::thread::id, int>> told;
  threads.run([&told] {
    told.set_value({std::this_thread::get_id(), getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()))});
  });
  const auto [thread, nice] = told.get_future().get();
  EXPECT_NE(thread, std::this_thread::get_id());
  EXPECT_GE(nice, 10);
  EXPECT_LE(nice, std::max(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())), 10))
      << "only the superuser may leave a higher one for it";
}

TEST(BackgroundThreads, WorkThatHangsHoldsUpNoOther) {
  std::promise<void> release;
  std::promise<void> done;
  BackgroundThreads threads(makeUtilityThread);
  threads.run([&release] { release.get_future().wait(); });
  threads.run([&done] { done.set_value(); });
  EXPECT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
  release.set_value();
}

TEST(BackgroundThreads, DestructionWaitsForWorkThatIsNearlyDone) {
  std::atomic<bool> done = false;
  {
    BackgroundThreads threads(makeUtilityThread);
    threads.run([&done] {
      std::this_thread::sleep_for(20ms);  // the work itself, not a wait for something
      done = true;
    });
  }
  EXPECT_TRUE(done);
}

TEST(BackgroundThreads, EndTellsOfWorkThatHangs) {
  std::promise<void> release;
  BackgroundThreads threads(makeUtilityThread);
  EXPECT_TRUE(threads.endBy(std::chrono::steady_clock::now())) << "nothing runs";
  threads.run([&release] { release.get_future().wait(); });
  EXPECT_FALSE(threads.endBy(std::chrono::steady_clock::now() + 10ms));
  release.set_value();
  EXPECT_TRUE(threads.endBy(std::chrono::steady_clock::now() + 10s));
}

}  // namespace
}  // namespace nimbo
