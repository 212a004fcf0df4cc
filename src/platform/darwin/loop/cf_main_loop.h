// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/darwin/core/cf_object.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Part of a run loop, which no longer calls it once it is let go.
template <class Ref, auto kInvalidate>
struct RunLoopPartTraits {
  using Handle = Ref;
  static Handle invalid() { return nullptr; }
  static void release(Handle part) {
    kInvalidate(part);
    CFRelease(part);
  }
};
using RunLoopSource = UniqueHandle<RunLoopPartTraits<CFRunLoopSourceRef, CFRunLoopSourceInvalidate>>;
using RunLoopObserver = UniqueHandle<RunLoopPartTraits<CFRunLoopObserverRef, CFRunLoopObserverInvalidate>>;

/// The main loop on the main thread's CFRunLoop, in its common modes, so that everything also runs while a menu is
/// open. Whoever else runs that loop runs this one. One in a process.
class CfMainLoop final : public MainLoop {
 public:
  /// What runs the loop until it is stopped, and what stops it: an application with windows has its own.
  struct Runner {
    std::function<void()> run = CFRunLoopRun;
    std::function<void()> stop = [] { CFRunLoopStop(CFRunLoopGetMain()); };
  };

  CfMainLoop() : CfMainLoop(Runner()) {}
  explicit CfMainLoop(Runner runner);

  void post(std::function<void()> task) override;
  [[nodiscard]] Subscription every(std::chrono::milliseconds interval, std::chrono::milliseconds leeway,
                                   std::function<void()> fire) override;
  [[nodiscard]] Subscription at(std::chrono::system_clock::time_point when, std::chrono::milliseconds leeway,
                                std::function<void()> fire) override;
  [[nodiscard]] Subscription watch(int descriptor, std::function<void()> ready) override;
  [[nodiscard]] std::uint64_t turn() const override { return turn_; }
  void run() override;
  void quit() override;

 private:
  void runPosted();

  const Runner runner_;
  bool quit_ = false;
  std::uint64_t turn_ = 0;
  RunLoopSource wakeUp_;
  RunLoopObserver turns_;

  std::mutex mutex_;
  std::vector<std::function<void()>> posted_;  // guarded by mutex_
};

}  // namespace nimbo
