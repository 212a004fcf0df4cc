// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/linux/files/unique_fd.h"
#include "platform/linux/loop/sd_event_handles.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The main loop on libsystemd's sd-event. Timers carry their leeway as sd-event's accuracy.
class SdEventMainLoop final : public MainLoop {
 public:
  /// Throws std::system_error when the kernel has no resources for a loop.
  SdEventMainLoop();
  ~SdEventMainLoop() override;
  SdEventMainLoop(const SdEventMainLoop&) = delete;
  SdEventMainLoop& operator=(const SdEventMainLoop&) = delete;

  void post(std::function<void()> task) override;
  [[nodiscard]] Subscription every(std::chrono::milliseconds interval, std::chrono::milliseconds leeway,
                                   std::function<void()> fire) override;
  [[nodiscard]] Subscription at(std::chrono::system_clock::time_point when, std::chrono::milliseconds leeway,
                                std::function<void()> fire) override;
  [[nodiscard]] Subscription watch(int descriptor, std::function<void()> ready) override;
  void adopt(OuterLoop& outer) override;
  void run() override;
  void quit() override;

  /// For the buses and device monitors of this folder; lives as long as the loop.
  [[nodiscard]] sd_event* event() const { return event_.get(); }

 private:
  void runPosted();
  void dispatchPending();

  Event event_;
  UniqueFd wakeUp_;
  Subscription wakeUpWatch_;
  OuterLoop* outer_ = nullptr;
  bool quit_ = false;

  std::mutex mutex_;
  std::vector<std::function<void()>> posted_;  // guarded by mutex_
};

}  // namespace nimbo
