// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "base/subscription.h"

namespace nimbo {

/// The one event loop of the process. Everything is called on the main thread except `post`;
/// every callback arrives on the main thread, from inside `run`.
class MainLoop {
 public:
  virtual ~MainLoop() = default;

  /// Runs `task` on the main thread, after those posted before it. Callable from any thread, also
  /// before `run`; tasks still waiting when the loop is destroyed are dropped unrun.
  virtual void post(std::function<void()> task) = 0;

  /// Fires first after `interval`, then every `interval`, each time at most `leeway` late so that
  /// the kernel can join wake-ups. Does not count while the system sleeps.
  [[nodiscard]] virtual Subscription every(std::chrono::milliseconds interval, std::chrono::milliseconds leeway,
                                           std::function<void()> fire) = 0;

  /// Fires once at a wall-clock time, at most `leeway` late. The clock runs on through system
  /// sleep and the timer follows when the clock is set; a time already past fires on the next turn.
  [[nodiscard]] virtual Subscription at(std::chrono::system_clock::time_point when, std::chrono::milliseconds leeway,
                                        std::function<void()> fire) = 0;

  /// Calls `ready` whenever `descriptor` can be read or has hung up. The caller keeps the
  /// descriptor open for the life of the subscription.
  [[nodiscard]] virtual Subscription watch(int descriptor, std::function<void()> ready) = 0;

  /// Which turn this is: a number that is another after each wait of the loop, and the same while a task, timer or
  /// watch runs. Main thread only.
  [[nodiscard]] virtual std::uint64_t turn() const = 0;

  /// Dispatches until `quit`.
  virtual void run() = 0;
  virtual void quit() = 0;
};

/// Runs jobs one after the other on a background thread of low (utility) CPU priority. A job
/// captures all it needs and hands its result back through `MainLoop::post`.
class WorkQueue {
 public:
  virtual ~WorkQueue() = default;

  /// Callable from any thread. Jobs not yet begun when the queue is destroyed are dropped; one
  /// that runs is waited for, since it may use what goes after the queue.
  virtual void async(std::function<void()> job) = 0;
};

}  // namespace nimbo
