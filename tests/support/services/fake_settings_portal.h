// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/services/bus_peer.h"

namespace nimbo {

/// The desktop's settings portal, which knows one setting: the colour scheme.
class FakeSettingsPortal {
 public:
  /// Version 1 knows `Read` only, which wraps its answer twice.
  FakeSettingsPortal(BusLoop& loop, const std::string& address, std::optional<std::uint32_t> scheme, int version = 2)
      : peer(loop, address), scheme_(scheme) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object_vtable(peer.bus(), &slot, kPath, kInterface, version == 1 ? kFirstTable : kSecondTable, this);
    object_.reset(slot);
    peer.own("org.freedesktop.portal.Desktop");
  }

  void set(std::uint32_t scheme) {
    scheme_ = scheme;
    sd_bus_emit_signal(peer.bus(), kPath, kInterface, "SettingChanged", "ssv", "org.freedesktop.appearance",
                       "color-scheme", "u", scheme);
  }

  /// A signal that a confused desktop might send.
  void sendTextInsteadOfANumber() {
    sd_bus_emit_signal(peer.bus(), kPath, kInterface, "SettingChanged", "ssv", "org.freedesktop.appearance",
                       "color-scheme", "s", "dark");
  }

  BusPeer peer;
  std::vector<std::string> asked;  ///< the methods

 private:
  static constexpr const char* kPath = "/org/freedesktop/portal/desktop";
  static constexpr const char* kInterface = "org.freedesktop.portal.Settings";

  static int onRead(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeSettingsPortal*>(self);
    const std::string method = sd_bus_message_get_member(call);
    fake.asked.push_back(method);
    const char* nameSpace = nullptr;
    const char* key = nullptr;
    sd_bus_message_read(call, "ss", &nameSpace, &key);
    if (!fake.scheme_ || std::string(nameSpace) != "org.freedesktop.appearance" || std::string(key) != "color-scheme") {
      return sd_bus_error_set(error, "org.freedesktop.portal.Error.NotFound", "Requested setting not found");
    }
    if (method == "ReadOne") return sd_bus_reply_method_return(call, "v", "u", *fake.scheme_);
    return sd_bus_reply_method_return(call, "v", "v", "u", *fake.scheme_);
  }

  static constexpr sd_bus_vtable kFirstTable[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Read", "ss", "v", onRead, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  };
  static constexpr sd_bus_vtable kSecondTable[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Read", "ss", "v", onRead, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("ReadOne", "ss", "v", onRead, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END,
  };

  std::optional<std::uint32_t> scheme_;
  BusSlot object_;
};

}  // namespace nimbo
