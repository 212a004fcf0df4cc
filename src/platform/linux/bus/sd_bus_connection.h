// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "platform/linux/bus/sd_bus_handles.h"

struct sd_event;

namespace nimbo {

/// One connection to a message bus, attached to the main loop. A bus that cannot be reached gives
/// a null `get()`, which everything in this folder takes and then stays silent. Main thread only.
class SdBusConnection {
 public:
  /// Connects without waiting for the bus's answer. `lost` is called once, from the loop, when a
  /// connection that stood or was being made ends from the other side.
  SdBusConnection(sd_event* event, const std::string& address, std::function<void()> lost = {});
  SdBusConnection(const SdBusConnection&) = delete;
  SdBusConnection& operator=(const SdBusConnection&) = delete;

  [[nodiscard]] sd_bus* get() const { return bus_.get(); }

  /// Why `get()` is null, in the system's words.
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  Bus bus_;
  BusSlot disconnected_;
  std::string failure_;
};

/// Where the session bus listens: the value of DBUS_SESSION_BUS_ADDRESS, else the socket in
/// XDG_RUNTIME_DIR. Empty when both are.
[[nodiscard]] std::string sessionBusAddress(const std::string& addressVariable, const std::string& runtimeFolder);

/// Where the system bus listens: the value of DBUS_SYSTEM_BUS_ADDRESS, else the usual socket.
[[nodiscard]] std::string systemBusAddress(const std::string& addressVariable);

}  // namespace nimbo
