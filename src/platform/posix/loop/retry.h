// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

#include "base/subscription.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Tries again later what has failed: after 2 s, 4 s and so on, at most 5 minutes apart. Main thread only.
class Retry {
 public:
  /// `timers` outlives this.
  explicit Retry(MainLoop& timers) : timers_(timers) {}

  /// Calls `action` once, instead of what has waited.
  void later(std::function<void()> action) {
    waiting_ = timers_.every(distance_, distance_ / 4, [this, action = std::move(action)] {
      const auto due = action;  // what waits is gone with its timer
      waiting_.reset();
      due();
    });
    distance_ = std::min(distance_ * 2, kLongest);
  }

  void cancel() { waiting_.reset(); }

  /// Begins anew with the shortest distance.
  void succeeded() {
    cancel();
    distance_ = kFirst;
  }

 private:
  static constexpr std::chrono::milliseconds kFirst = std::chrono::seconds(2);
  static constexpr std::chrono::milliseconds kLongest = std::chrono::minutes(5);

  MainLoop& timers_;
  std::chrono::milliseconds distance_ = kFirst;
  Subscription waiting_;
};

}  // namespace nimbo
