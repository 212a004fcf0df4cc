// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xfconf_property.h"

#include <utility>

namespace nimbo {

XfconfProperty::XfconfProperty(sd_bus* session, const std::string& channel, const std::string& property,
                               BusHandler changed)
    : changed_(std::move(changed)) {
  constexpr const char* kService = "org.xfce.Xfconf";
  constexpr const char* kPath = "/org/xfce/Xfconf";
  const BusSignal propertyChanged{kService, kPath, kService, "PropertyChanged", {channel, property}};
  propertyChanged_ = addMatch(session, matchRule(propertyChanged), [this](sd_bus_message* signal) {
    if (sd_bus_message_skip(signal, "ss") >= 0) changed_(signal);
  });
  const BusSignal propertyRemoved{kService, kPath, kService, "PropertyRemoved", {channel, property}};
  propertyRemoved_ =
      addMatch(session, matchRule(propertyRemoved), [this](sd_bus_message* /*signal*/) { changed_(nullptr); });
  const BusMethod getProperty{kService, kPath, kService, "GetProperty"};
  query_ = callAsync(methodCall(session, getProperty, channel, property), [this](sd_bus_message* reply) {
    if (!isError(reply)) changed_(reply);
  });
}

}  // namespace nimbo
