// SPDX-License-Identifier: MIT
#include "platform/linux/bus/sd_bus_connection.h"

#include <systemd/sd-event.h>

#include <system_error>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

int start(sd_bus* bus, const std::string& address) {
  if (address.empty()) return -ENOENT;
  int result = sd_bus_set_address(bus, address.c_str());
  if (result >= 0) result = sd_bus_set_bus_client(bus, 1);
  // The program decides itself what a lost bus means, and the owner of the bus closes it.
  if (result >= 0) result = sd_bus_set_exit_on_disconnect(bus, 0);
  if (result >= 0) result = sd_bus_set_close_on_exit(bus, 0);
  if (result >= 0) result = sd_bus_start(bus);
  return result;
}

}  // namespace

SdBusConnection::SdBusConnection(sd_event* event, const std::string& address, std::function<void()> lost) {
  int result = sd_bus_new(bus_.out());
  if (result >= 0) result = start(get(), address);
  if (result >= 0) result = sd_bus_attach_event(get(), event, SD_EVENT_PRIORITY_NORMAL);
  if (result < 0) {
    failure_ = address.empty() ? "no address is known" : std::generic_category().message(-result);
    bus_.reset();
    return;
  }
  if (!lost) return;
  // The library sends this one to itself; the bus never sees the match.
  constexpr const char* kLocal =
      "type='signal',sender='org.freedesktop.DBus.Local',path='/org/freedesktop/DBus/Local',"
      "interface='org.freedesktop.DBus.Local',member='Disconnected'";
  disconnected_ = addMatch(get(), kLocal, [lost = std::move(lost)](sd_bus_message* /*signal*/) { lost(); });
}

std::string sessionBusAddress(const std::string& addressVariable, const std::string& runtimeFolder) {
  if (!addressVariable.empty()) return addressVariable;
  if (runtimeFolder.empty()) return {};
  return "unix:path=" + percentEncoded(runtimeFolder + "/bus", "-_/.\\*");
}

std::string systemBusAddress(const std::string& addressVariable) {
  return addressVariable.empty() ? "unix:path=/run/dbus/system_bus_socket" : addressVariable;
}

}  // namespace nimbo
