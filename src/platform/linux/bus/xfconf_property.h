// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {

/// One property of XFCE's settings service, followed for as long as this lives. Main thread only.
class XfconfProperty {
 public:
  /// `changed` gets a message to read the value (a "v") from when it is first known and whenever it changes,
  /// null when it was removed. Nothing is called while the service does not run.
  XfconfProperty(sd_bus* session, const std::string& channel, const std::string& property, BusHandler changed);
  XfconfProperty(const XfconfProperty&) = delete;
  XfconfProperty& operator=(const XfconfProperty&) = delete;

 private:
  BusHandler changed_;
  BusSlot propertyChanged_;
  BusSlot propertyRemoved_;
  BusSlot query_;
};

}  // namespace nimbo
