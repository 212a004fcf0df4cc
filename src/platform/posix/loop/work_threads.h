// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "platform/posix/loop/background_threads.h"
#include "platform/posix/loop/thread_work_queue.h"

namespace nimbo {

/// Where the running program has its blocking work done. Main thread only.
struct WorkThreads {
  /// `loop` outlives it.
  WorkThreads(MainLoop& loop, UtilityThread lower)
      : single(lower),
        claude("Nimbo.claude", loop, lower),
        temperature("Nimbo.temperature", loop, lower),
        utility("Nimbo.utility", loop, lower) {}

  /// Runs work on a thread of its own.
  [[nodiscard]] std::function<void(std::function<void()>)> background() {
    return [this](const std::function<void()>& work) { single.run(work); };
  }

  /// Begins nothing more and waits for what runs, 0.7 s at most: enough to stop Claude Code, which is given half a
  /// second to end politely. False when some of it still runs then.
  [[nodiscard]] bool end() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(700);
    bool ended = single.endBy(deadline);
    for (auto* const queue : {&claude, &temperature, &utility}) ended &= queue->endBy(deadline);
    return ended;
  }

  BackgroundThreads single;  ///< a thread for each piece of work
  ThreadWorkQueue claude;
  ThreadWorkQueue temperature;
  ThreadWorkQueue utility;
};

}  // namespace nimbo
