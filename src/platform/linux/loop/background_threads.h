// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace nimbo {

/// A thread of low priority for each piece of blocking work. Main thread only.
class BackgroundThreads {
 public:
  BackgroundThreads();
  /// Waits for work that runs, since it may use what goes afterwards.
  ~BackgroundThreads();
  BackgroundThreads(const BackgroundThreads&) = delete;
  BackgroundThreads& operator=(const BackgroundThreads&) = delete;

  /// Where no thread can be made, the work is done at once.
  void run(const std::function<void()>& work);

  /// Waits for work that runs. False when some of it still does at `deadline`.
  [[nodiscard]] bool endBy(std::chrono::steady_clock::time_point deadline);

 private:
  struct Running;
  std::shared_ptr<Running> running_;
};

}  // namespace nimbo
