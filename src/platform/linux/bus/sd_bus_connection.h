// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "base/unique_handle.h"

namespace nimbo {

/// Releasing a slot takes back its match, object or pending call.
using BusSlot = UniquePointer<sd_bus_slot, sd_bus_slot_unref>;

using BusMessage = UniquePointer<sd_bus_message, sd_bus_message_unref>;

using Deadline = std::chrono::steady_clock::time_point;

/// One connection to a message bus. A bus that cannot be reached gives a null `get()`, which everything
/// in this folder takes and then stays silent. One thread at a time.
class SdBusConnection {
 public:
  /// Connects without waiting for the bus's answer. `event` deals with the connection; without one only the calls
  /// below do, and run nobody else's handlers. `lost` is called once, from the loop, when a connection that stood or
  /// was being made ends from the other side.
  SdBusConnection(sd_event* event, const std::string& address, std::function<void()> lost = {});
  SdBusConnection(const SdBusConnection&) = delete;
  SdBusConnection& operator=(const SdBusConnection&) = delete;

  [[nodiscard]] sd_bus* get() const { return bus_.get(); }

  /// Why `get()` is null, in the system's words.
  [[nodiscard]] const std::string& failure() const { return failure_; }

  /// Deals with this connection alone until `done` holds. False when the time ran out first, whatever became of the
  /// bus.
  [[nodiscard]] bool turnUntil(Deadline deadline, const std::function<bool()>& done) const;

  /// Makes all calls at once and waits. The replies, which may be errors, are in the same order; null stands for one
  /// that did not come in time.
  [[nodiscard]] std::vector<BusMessage> ask(const std::vector<BusMessage>& calls, Deadline deadline) const;
  [[nodiscard]] BusMessage ask(BusMessage call, Deadline deadline) const;

 private:
  UniquePointer<sd_bus, sd_bus_close_unref> bus_;  // releasing it leaves nothing of it on the bus
  BusSlot disconnected_;
  std::string failure_;
};

/// Where the session bus listens: the value of DBUS_SESSION_BUS_ADDRESS, else the socket in
/// XDG_RUNTIME_DIR. Empty when both are.
[[nodiscard]] std::string sessionBusAddress(const std::string& addressVariable, const std::string& runtimeFolder);

/// Where the system bus listens: the value of DBUS_SYSTEM_BUS_ADDRESS, else the usual socket.
[[nodiscard]] std::string systemBusAddress(const std::string& addressVariable);

}  // namespace nimbo
