// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "platform/posix/loop/background_threads.h"
#include "platform/posix/loop/thread_work_queue.h"

namespace nimbo {

/// Where the running program has its blocking work done. Main thread only.
class WorkThreads {
 public:
  /// `loop` outlives it.
  WorkThreads(MainLoop& loop, UtilityThread lower)
      : background_(lower),
        claude("Nimbo.claude", loop, lower),
        temperature("Nimbo.temperature", loop, lower),
        utility("Nimbo.utility", loop, lower) {}

  /// Runs work on a thread of its own.
  [[nodiscard]] std::function<void(std::function<void()>)> background() {
    return [this](const std::function<void()>& work) { background_.run(work); };
  }

  /// Begins nothing more and waits for what runs, 0.7 s at most: enough to stop Claude Code, which is given half a
  /// second to end politely. False when some of it still runs then.
  [[nodiscard]] bool end() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(700);
    bool ended = background_.endBy(deadline);
    for (auto* const queue : {&claude, &temperature, &utility}) ended &= queue->endBy(deadline);
    return ended;
  }

 private:
  BackgroundThreads background_;

 public:
  ThreadWorkQueue claude;
  ThreadWorkQueue temperature;
  ThreadWorkQueue utility;
};

}  // namespace nimbo
