// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace nimbo {

/// A thread of low priority for each piece of blocking work. Main thread only.
class BackgroundThreads {
 public:
  BackgroundThreads();
  /// Waits a moment for work that runs. What still hangs then, in a file system that does not answer,
  /// ends with the process.
  ~BackgroundThreads();
  BackgroundThreads(const BackgroundThreads&) = delete;
  BackgroundThreads& operator=(const BackgroundThreads&) = delete;

  /// Where no thread can be made, the work is done at once.
  void run(const std::function<void()>& work);

 private:
  struct Running;
  std::shared_ptr<Running> running_;
};

}  // namespace nimbo
