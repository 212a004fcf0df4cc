// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/loop/sd_event_main_loop.h"

namespace nimbo {

using Deadline = std::chrono::steady_clock::time_point;

/// A bus connection of one's own for the few calls whose answers have to be waited for, which is
/// never longer than allowed, whatever became of the bus. One thread at a time.
class BoundedBus {
 public:
  explicit BoundedBus(const std::string& address);
  BoundedBus(const BoundedBus&) = delete;
  BoundedBus& operator=(const BoundedBus&) = delete;

  /// Null when nothing listens at the address.
  [[nodiscard]] sd_bus* get() const { return connection_.get(); }

  /// Deals with this connection alone until `done` holds; false when the time ran out first.
  [[nodiscard]] bool turnUntil(Deadline deadline, const std::function<bool()>& done) const;

  /// From now on `event` deals with it.
  void attach(sd_event* event);

 private:
  Event ownLoop_;  // so that waiting runs nobody else's handlers
  SdBusConnection connection_;
};

}  // namespace nimbo
