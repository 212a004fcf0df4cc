// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/sd_bus_connection.h"

namespace nimbo {

/// Follows who owns one bus name. Main thread only.
class BusNameWatch {
 public:
  /// `changed` gets the owner's unique name, or an empty text for none: first as soon as the bus
  /// has told, then whenever it is another. It may destroy this object.
  BusNameWatch(sd_bus* bus, const std::string& name, std::function<void(const std::string& owner)> changed);
  BusNameWatch(const BusNameWatch&) = delete;
  BusNameWatch& operator=(const BusNameWatch&) = delete;

 private:
  void ask(sd_bus* bus, const std::string& name);
  void update(const std::string& owner);

  std::shared_ptr<std::function<void(const std::string&)>> changed_;  // shared with a call that runs
  std::optional<std::string> owner_;
  BusSlot match_;
  BusSlot query_;
};

}  // namespace nimbo
