// SPDX-License-Identifier: MIT
#include "platform/posix/loop/thread_work_queue.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/loop/utility_thread.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kBound{5};

TEST(ThreadWorkQueue, JobsRunOneAfterTheOtherInOrder) {
  SdEventMainLoop loop;
  ThreadWorkQueue queue("test", loop, makeUtilityThread);
  std::vector<int> order;
  std::promise<void> done;
  for (int i = 0; i < 100; ++i) queue.async([&order, i] { order.push_back(i); });
  queue.async([&] { done.set_value(); });
  ASSERT_EQ(done.get_future().wait_for(kBound), std::future_status::ready);
  ASSERT_EQ(order.size(), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(ThreadWorkQueue, JobsRunAtLowPriorityOnANamedThread) {
  const int ownNice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
  SdEventMainLoop loop;
  ThreadWorkQueue queue("Nimbo.temperature", loop, makeUtilityThread);
  std::promise<int> nice;
  std::promise<std::string> name;
  queue.async([&] {
    nice.set_value(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())));
    char text[16] = {};
    pthread_getname_np(pthread_self(), text, sizeof text);
    name.set_value(text);
  });
  const int jobNice = nice.get_future().get();
  EXPECT_GE(jobNice, 10);
  EXPECT_LE(jobNice, std::max(ownNice, 10)) << "only the superuser may leave a higher one for it";
  EXPECT_EQ(name.get_future().get(), "Nimbo.temperatu");
  EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())), ownNice) << "the caller keeps its own priority";
}

TEST(ThreadWorkQueue, DestructionWaitsForTheRunningJob) {
  std::promise<void> started;
  std::promise<void> release;
  bool finished = false;
  std::thread releaser;
  {
    SdEventMainLoop loop;
    ThreadWorkQueue queue("test", loop, makeUtilityThread);
    queue.async([&] {
      started.set_value();
      release.get_future().wait_for(kBound);
      finished = true;
    });
    started.get_future().wait();
    releaser = std::thread([&] { release.set_value(); });
  }
  releaser.join();
  EXPECT_TRUE(finished);
}

TEST(ThreadWorkQueue, EndTellsOfAJobThatHangsAndDropsTheRest) {
  std::promise<void> started;
  std::promise<void> release;
  bool dropped = true;
  SdEventMainLoop loop;
  ThreadWorkQueue queue("test", loop, makeUtilityThread);
  queue.async([&] {
    started.set_value();
    release.get_future().wait();
  });
  queue.async([&] { dropped = false; });
  started.get_future().wait();
  EXPECT_FALSE(queue.endBy(std::chrono::steady_clock::now() + std::chrono::milliseconds(10)));
  release.set_value();
  EXPECT_TRUE(queue.endBy(std::chrono::steady_clock::now() + kBound));
  EXPECT_TRUE(dropped);
}

TEST(ThreadWorkQueue, WhatAJobHeldIsReleasedOnceItHasRun) {
  SdEventMainLoop loop;
  ThreadWorkQueue queue("test", loop, makeUtilityThread);
  auto held = std::make_shared<int>(1);
  const std::weak_ptr<int> watched = held;
  std::promise<void> done;
  queue.async([held = std::move(held)] {});
  queue.async([&] { done.set_value(); });
  ASSERT_EQ(done.get_future().wait_for(kBound), std::future_status::ready);
  EXPECT_TRUE(watched.expired());
}

TEST(ThreadWorkQueue, ThreadEndsWithTheLastJobAndTheNextOneHasAnother) {
  SdEventMainLoop loop;
  ThreadWorkQueue queue("test", loop, makeUtilityThread);
  for (int round = 0; round < 3; ++round) {
    std::promise<pid_t> thread;
    queue.async([&] { thread.set_value(gettid()); });
    const auto task = std::filesystem::path("/proc/self/task") / std::to_string(thread.get_future().get());
    const auto deadline = std::chrono::steady_clock::now() + kBound;
    while (std::filesystem::exists(task) && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    EXPECT_FALSE(std::filesystem::exists(task));
  }
}

TEST(ThreadWorkQueue, JobForWhichNoThreadCanBeMadeRunsWhenOneCan) {
  pthread_attr_t before;
  ASSERT_EQ(pthread_getattr_default_np(&before), 0);
  pthread_attr_t tooLarge = before;
  ASSERT_EQ(pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 60), 0);
  SdEventMainLoop loop;
  ThreadWorkQueue queue("test", loop, makeUtilityThread);
  bool done = false;
  ASSERT_EQ(pthread_setattr_default_np(&tooLarge), 0);
  queue.async([&] {
    loop.post([&] {
      done = true;
      loop.quit();
    });
  });
  ASSERT_EQ(pthread_setattr_default_np(&before), 0);
  const auto bound = loop.every(kBound, std::chrono::milliseconds(1), [&loop] { loop.quit(); });
  loop.run();
  EXPECT_TRUE(done);
}

TEST(ThreadWorkQueue, UnusedQueueEndsAtOnce) {
  SdEventMainLoop loop;
  const ThreadWorkQueue queue("test", loop, makeUtilityThread);
}

}  // namespace
}  // namespace nimbo
