// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <utility>

#include "platform/main_loop.h"

namespace nimbo {

/// A background queue that works when the test says so, on the test's own thread.
class FakeWorkQueue final : public WorkQueue {
 public:
  void async(std::function<void()> job) override { jobs_.push_back(std::move(job)); }

  [[nodiscard]] std::size_t waiting() const { return jobs_.size(); }

  /// False when nothing waits.
  bool runOne() {
    if (jobs_.empty()) return false;
    const auto job = std::move(jobs_.front());
    jobs_.pop_front();
    job();
    return true;
  }

 private:
  std::deque<std::function<void()>> jobs_;
};

}  // namespace nimbo
