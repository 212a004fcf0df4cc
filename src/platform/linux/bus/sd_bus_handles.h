// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include "base/unique_handle.h"

namespace nimbo {

/// Releasing a slot takes back its match, object or pending call.
using BusSlot = UniquePointer<sd_bus_slot, sd_bus_slot_unref>;

using BusMessage = UniquePointer<sd_bus_message, sd_bus_message_unref>;

/// Releasing a bus closes the connection, so that nothing of it is left on the bus.
using Bus = UniquePointer<sd_bus, sd_bus_close_unref>;

}  // namespace nimbo
