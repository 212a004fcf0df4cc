// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <utility>
#include <variant>

#include "platform/linux/bus/xfconf_property.h"
#include "support/services/bus_peer.h"

namespace nimbo {

using XfconfValue = std::variant<bool, std::string>;

/// XFCE's settings service with its store in memory.
class FakeXfconf {
 public:
  FakeXfconf(BusLoop& loop, const std::string& address) : peer(loop, address) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object_vtable(peer.bus(), &slot, kPath, kInterface, kTable, this);
    object_.reset(slot);
    peer.own(kInterface);
  }

  void set(const std::string& channel, const std::string& property, const XfconfValue& value) {
    values_[{channel, property}] = value;
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(peer.bus(), &signal, kPath, kInterface, "PropertyChanged");
    const BusMessage owned(signal);
    sd_bus_message_append(signal, "ss", channel.c_str(), property.c_str());
    append(signal, value);
    sd_bus_send(peer.bus(), signal, nullptr);
  }

  void remove(const std::string& channel, const std::string& property) {
    values_.erase({channel, property});
    sd_bus_emit_signal(peer.bus(), kPath, kInterface, "PropertyRemoved", "ss", channel.c_str(), property.c_str());
  }

  BusPeer peer;
  int asked = 0;

 private:
  static constexpr const char* kPath = "/org/xfce/Xfconf";
  static constexpr const char* kInterface = "org.xfce.Xfconf";

  static void append(sd_bus_message* message, const XfconfValue& value) {
    if (const bool* flag = std::get_if<bool>(&value)) sd_bus_message_append(message, "v", "b", *flag ? 1 : 0);
    if (const auto* text = std::get_if<std::string>(&value)) sd_bus_message_append(message, "v", "s", text->c_str());
  }

  static int onGet(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeXfconf*>(self);
    ++fake.asked;
    const char* channel = nullptr;
    const char* property = nullptr;
    sd_bus_message_read(call, "ss", &channel, &property);
    const auto found = fake.values_.find({channel, property});
    if (found == fake.values_.end()) {
      return sd_bus_error_set(error, "org.xfce.Xfconf.Error.PropertyNotFound", "no such property");
    }
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    const BusMessage owned(reply);
    append(reply, found->second);
    return sd_bus_send(nullptr, reply, nullptr);
  }

  static constexpr sd_bus_vtable kTable[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("GetProperty", "ss", "v", onGet, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  };

  std::map<std::pair<std::string, std::string>, XfconfValue> values_;
  BusSlot object_;
};

}  // namespace nimbo
