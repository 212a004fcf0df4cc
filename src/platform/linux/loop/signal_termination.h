// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include <vector>

#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// SIGTERM, SIGINT and SIGHUP, delivered on the main loop. Make it before any thread is started:
/// it blocks the signals in the calling thread and every later thread inherits that.
class SignalTermination final : public Termination {
 public:
  /// `loop` outlives this object.
  explicit SignalTermination(SdEventMainLoop& loop);

  /// One observer at a time; a later one replaces it.
  [[nodiscard]] Subscription observe(std::function<void(Cause cause)> requested) override;

 private:
  static int onSignal(sd_event_source* source, const signalfd_siginfo* info, void* self);

  std::vector<EventSource> sources_;
  std::function<void(Cause)> requested_;
};

}  // namespace nimbo
