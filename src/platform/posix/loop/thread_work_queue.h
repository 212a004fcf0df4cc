// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "base/lifetime.h"
#include "platform/main_loop.h"
#include "platform/posix/loop/background_threads.h"
#include "platform/posix/loop/retry.h"

namespace nimbo {

/// One thread of low priority that ends when it has done all jobs, so that a queue without work costs nothing.
/// Where no thread can be made, jobs wait until one can.
class ThreadWorkQueue final : public WorkQueue {
 public:
  /// `label` names the thread. `loop` outlives the queue.
  ThreadWorkQueue(std::string label, MainLoop& loop, UtilityThread utility);
  ~ThreadWorkQueue() override;
  ThreadWorkQueue(const ThreadWorkQueue&) = delete;
  ThreadWorkQueue& operator=(const ThreadWorkQueue&) = delete;

  void async(std::function<void()> job) override;

  /// Begins no further job and waits for the one that runs. False when it still does at `deadline`.
  [[nodiscard]] bool endBy(std::chrono::steady_clock::time_point deadline);

 private:
  void startThread();
  void work();

  const std::string label_;
  MainLoop& loop_;
  const UtilityThread utility_;
  std::mutex mutex_;
  std::deque<std::function<void()>> jobs_;  // guarded by mutex_
  bool working_ = false;                    // guarded by mutex_; else the thread takes no more jobs
  std::condition_variable idle_;            // when working_ has become false
  bool stopping_ = false;                   // guarded by mutex_
  std::thread thread_;                      // guarded by mutex_ until stopping_
  Retry retry_{loop_};                      // main thread
  Lifetime lifetime_;
};

}  // namespace nimbo
