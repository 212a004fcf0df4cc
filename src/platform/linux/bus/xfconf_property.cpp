// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xfconf_property.h"

namespace nimbo {

XfconfProperty followXfconf(sd_bus* session, const std::string& channel, const std::string& property,
                            const BusHandler& changed) {
  constexpr const char* kService = "org.xfce.Xfconf";
  constexpr const char* kPath = "/org/xfce/Xfconf";
  const BusSignal set{kService, kPath, kService, "PropertyChanged", {channel, property}};
  const BusSignal removed{kService, kPath, kService, "PropertyRemoved", {channel, property}};
  const BusMethod get{kService, kPath, kService, "GetProperty"};
  const auto toldOfValue = [changed](sd_bus_message* signal) {
    if (sd_bus_message_skip(signal, "ss") >= 0) changed(signal);
  };
  const auto toldOfRemoval = [changed](sd_bus_message* /*signal*/) { changed(nullptr); };
  const auto answered = [changed](sd_bus_message* reply) {
    if (!isError(reply)) changed(reply);
  };
  return {addMatch(session, matchRule(set), toldOfValue), addMatch(session, matchRule(removed), toldOfRemoval),
          callAsync(methodCall(session, get, channel, property), answered)};
}

}  // namespace nimbo
