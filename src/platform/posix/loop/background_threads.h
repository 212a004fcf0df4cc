// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace nimbo {

/// The system's way to give the calling thread a low (utility) priority and, where it is not empty, a name. Any thread.
using UtilityThread = void (*)(const std::string& name);

/// A thread of low priority for each piece of blocking work. Main thread only.
class BackgroundThreads {
 public:
  explicit BackgroundThreads(UtilityThread utility);
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
  const UtilityThread utility_;
};

}  // namespace nimbo
