// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "base/observer_list.h"
#include "base/subscription.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/power/inhibitors.h"
#include "platform/posix/files/unique_fd.h"
#include "platform/posix/loop/retry.h"
#include "platform/system_events.h"

namespace nimbo {

/// Sleep and wake as systemd-logind (or elogind) announces them. While somebody observes, a delay
/// lock makes the machine wait until everybody has been told that it is about to sleep. A bus that cannot be
/// reached or goes away is connected with again, at growing distances, as a refused lock is asked for again.
class LogindSystemSleep final : public SystemSleep {
 public:
  /// `loops` outlive this.
  LogindSystemSleep(InhibitorLoops loops, std::string systemAddress)
      : loops_(loops), address_(std::move(systemAddress)) {
    connect();
  }

  /// The connection that stands now, for those who have a question; null without one.
  [[nodiscard]] sd_bus* bus() const { return system_->get(); }

  [[nodiscard]] Subscription observe(std::function<void()> willSleep, std::function<void()> didWake) override;

 private:
  enum class Notice { willSleep, didWake };

  void connect();
  void lost();
  void start();
  void takeLock();
  void prepareForSleep(bool sleeping);

  const InhibitorLoops loops_;
  const std::string address_;
  std::optional<SdBusConnection> system_;
  ObserverList<Notice> observers_;
  bool sleeping_ = false;
  UniqueFd lock_;
  std::string owner_;  ///< of logind's name
  BusSlot prepareForSleep_;
  BusSlot inhibit_;
  Retry retry_{loops_.timers};  ///< of the connection, or of the lock
  std::optional<BusNameWatch> logind_;
};

}  // namespace nimbo
