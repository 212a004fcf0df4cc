// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace nimbo {

/// Runs jobs one after the other on a background thread of low (utility) CPU priority. A job
/// captures all it needs and hands its result back through `MainLoop::post`.
class WorkQueue {
 public:
  virtual ~WorkQueue() = default;

  /// Callable from any thread. Jobs not yet begun when the queue is destroyed are dropped; one
  /// that runs is waited for.
  virtual void async(std::function<void()> job) = 0;
};

}  // namespace nimbo
