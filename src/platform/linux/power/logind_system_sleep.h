// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "base/observer_list.h"
#include "base/subscription.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/files/unique_fd.h"
#include "platform/main_loop.h"
#include "platform/system_events.h"

namespace nimbo {

/// Sleep and wake as systemd-logind (or elogind) announces them. While somebody observes, a delay
/// lock makes the machine wait until everybody has been told that it is about to sleep.
class LogindSystemSleep final : public SystemSleep {
 public:
  /// `system` may be null: then nothing is ever announced. `loop` outlives this.
  LogindSystemSleep(sd_bus* system, MainLoop& loop) : system_(system), loop_(loop) {}

  [[nodiscard]] Subscription observe(std::function<void()> willSleep, std::function<void()> didWake) override;

 private:
  enum class Notice { willSleep, didWake };

  void start();
  void takeLock();
  void takeLockLater();
  void prepareForSleep(bool sleeping);

  sd_bus* const system_;
  MainLoop& loop_;
  ObserverList<Notice> observers_;
  bool sleeping_ = false;
  UniqueFd lock_;
  std::string owner_;  ///< of logind's name
  BusSlot prepareForSleep_;
  BusSlot inhibit_;
  Subscription retry_;
  std::optional<BusNameWatch> logind_;
};

}  // namespace nimbo
