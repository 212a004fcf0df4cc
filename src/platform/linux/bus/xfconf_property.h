// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "platform/linux/bus/sd_bus_handles.h"

namespace nimbo {

using XfconfValue = std::variant<bool, std::string>;

/// One property of XFCE's settings service, followed for as long as this lives. Main thread only.
class XfconfProperty {
 public:
  /// `changed` gets the value when it is first known and whenever it changes; absent when it was
  /// removed or has another type. Nothing is called while the service does not run.
  XfconfProperty(sd_bus* session, const std::string& channel, const std::string& property,
                 std::function<void(std::optional<XfconfValue>)> changed);
  XfconfProperty(const XfconfProperty&) = delete;
  XfconfProperty& operator=(const XfconfProperty&) = delete;

 private:
  std::function<void(std::optional<XfconfValue>)> changed_;
  BusSlot propertyChanged_;
  BusSlot propertyRemoved_;
  BusSlot query_;
};

}  // namespace nimbo
