// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xfconf_property.h"

namespace nimbo {

XfconfProperty followXfconf(sd_bus* session, const std::string& channel, const std::string& property,
                            const BusHandler& changed) {
  constexpr const char* kXfconf = "org.xfce.Xfconf";
  constexpr const char* kXfconfPath = "/org/xfce/Xfconf";
  const BusSignal set{kXfconf, kXfconfPath, kXfconf, "PropertyChanged", {channel, property}};
  const BusSignal removed{kXfconf, kXfconfPath, kXfconf, "PropertyRemoved", {channel, property}};
  const BusMethod get{kXfconf, kXfconfPath, kXfconf, "GetProperty"};
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
