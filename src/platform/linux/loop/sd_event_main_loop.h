// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include <memory>
#include <mutex>
#include <vector>

#include "platform/main_loop.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {

using Event = UniquePointer<sd_event, sd_event_unref>;

/// Releasing a source also stops it, although a handler that runs right now may still hold it.
using EventSource = UniquePointer<sd_event_source, sd_event_source_disable_unref>;

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
  [[nodiscard]] std::uint64_t turn() const override;
  void run() override;
  void quit() override;

  /// For the buses and device monitors of this folder; lives as long as the loop.
  [[nodiscard]] sd_event* event() const { return event_.get(); }

 private:
  void runPosted();

  Event event_;
  UniqueFd wakeUp_;
  Subscription wakeUpWatch_;
  bool quit_ = false;

  std::mutex mutex_;
  std::vector<std::function<void()>> posted_;  // guarded by mutex_
};

}  // namespace nimbo
