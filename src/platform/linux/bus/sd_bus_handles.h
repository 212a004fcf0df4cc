// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include "base/unique_handle.h"

namespace nimbo {

/// Releasing a slot takes back its match, object or pending call.
struct SdBusSlotTraits {
  using Handle = sd_bus_slot*;
  static Handle invalid() { return nullptr; }
  static void release(Handle slot) { sd_bus_slot_unref(slot); }
};
using BusSlot = UniqueHandle<SdBusSlotTraits>;

struct SdBusMessageTraits {
  using Handle = sd_bus_message*;
  static Handle invalid() { return nullptr; }
  static void release(Handle message) { sd_bus_message_unref(message); }
};
using BusMessage = UniqueHandle<SdBusMessageTraits>;

/// Releasing a bus closes the connection, so that nothing of it is left on the bus.
struct SdBusTraits {
  using Handle = sd_bus*;
  static Handle invalid() { return nullptr; }
  static void release(Handle bus) { sd_bus_close_unref(bus); }
};

}  // namespace nimbo
