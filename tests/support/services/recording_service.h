// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "support/services/bus_peer.h"

namespace nimbo {

/// A program on the bus whose one object takes every call and keeps a note of it.
class RecordingService {
 public:
  RecordingService(BusLoop& loop, const std::string& address, const std::string& name, const char* path)
      : peer_(loop, address) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object(peer_.bus(), &slot, path, onCall, this);
    object_.reset(slot);
    peer_.own(name);
  }

  std::vector<std::string> calls;  ///< "Method /path signature", and what the first argument holds if it is a list
  bool refuses = false;

 private:
  static int onCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& service = *static_cast<RecordingService*>(self);
    std::string note = std::string(sd_bus_message_get_member(call)) + ' ' + sd_bus_message_get_path(call) + ' ' +
                       sd_bus_message_get_signature(call, 1);
    std::vector<std::string> items;
    if (sd_bus_message_has_signature(call, "ass") > 0) (void)readStrings(call, items);
    for (const auto& item : items) note += ' ' + item;
    service.calls.push_back(std::move(note));
    if (service.refuses) return sd_bus_error_set(error, SD_BUS_ERROR_FAILED, "not now");
    return sd_bus_reply_method_return(call, "");
  }

  BusPeer peer_;
  BusSlot object_;
};

}  // namespace nimbo
