// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xfconf_property.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

std::optional<XfconfValue> readVariant(sd_bus_message* message) {
  const char* contents = nullptr;
  if (sd_bus_message_peek_type(message, nullptr, &contents) <= 0 || contents == nullptr) return std::nullopt;
  const std::string_view type = contents;
  if (type == "b") {
    int flag = 0;
    if (sd_bus_message_read(message, "v", "b", &flag) >= 0) return XfconfValue(flag != 0);
  } else if (type == "s") {
    const char* text = nullptr;
    if (sd_bus_message_read(message, "v", "s", &text) >= 0) return XfconfValue(std::string(text));
  }
  return std::nullopt;
}

std::string matchRule(const char* signal, const std::string& channel, const std::string& property) {
  return fmt::format(
      "type='signal',sender='org.xfce.Xfconf',path='/org/xfce/Xfconf',interface='org.xfce.Xfconf',"
      "member='{}',arg0='{}',arg1='{}'",
      signal, channel, property);
}

}  // namespace

XfconfProperty::XfconfProperty(sd_bus* session, const std::string& channel, const std::string& property,
                               std::function<void(std::optional<XfconfValue>)> changed)
    : changed_(std::move(changed)) {
  propertyChanged_ =
      addMatch(session, matchRule("PropertyChanged", channel, property).c_str(), [this](sd_bus_message* signal) {
        if (sd_bus_message_skip(signal, "ss") >= 0) changed_(readVariant(signal));
      });
  propertyRemoved_ = addMatch(session, matchRule("PropertyRemoved", channel, property).c_str(),
                              [this](sd_bus_message* /*signal*/) { changed_(std::nullopt); });
  constexpr BusMethod kGetProperty{"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty"};
  query_ = callAsync(methodCall(session, kGetProperty, channel, property), [this](sd_bus_message* reply) {
    if (!isError(reply)) changed_(readVariant(reply));
  });
}

}  // namespace nimbo
