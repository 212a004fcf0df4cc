// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {

/// Keeps one property of XFCE's settings service followed.
using XfconfProperty = std::array<BusSlot, 3>;

/// `changed` gets a message to read the value (a "v") from when it is first known and whenever it changes,
/// null when it was removed. Nothing is called while the service does not run.
[[nodiscard]] XfconfProperty followXfconf(sd_bus* session, const std::string& channel, const std::string& property,
                                          const BusHandler& changed);

}  // namespace nimbo
