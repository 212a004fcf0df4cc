// SPDX-License-Identifier: MIT
#include "platform/linux/bus/sd_bus_connection.h"

#include <systemd/sd-event.h>

#include <cstddef>
#include <cstdint>
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
  if (result >= 0 && event != nullptr) result = sd_bus_attach_event(get(), event, SD_EVENT_PRIORITY_NORMAL);
  if (result < 0) {
    failure_ = address.empty() ? "no address is known" : std::generic_category().message(-result);
    bus_.reset();
    return;
  }
  if (!lost) return;
  // The library sends this one to itself; the bus never sees the match.
  constexpr const char* kLocal = "org.freedesktop.DBus.Local";
  disconnected_ = addMatch(get(), matchRule({kLocal, "/org/freedesktop/DBus/Local", kLocal, "Disconnected"}),
                           [lost = std::move(lost)](sd_bus_message* /*signal*/) { lost(); });
}

bool SdBusConnection::turnUntil(Deadline deadline, const std::function<bool()>& done) const {
  using std::chrono::microseconds;
  while (!done()) {
    const auto left = std::chrono::ceil<microseconds>(deadline - std::chrono::steady_clock::now());
    if (left <= microseconds::zero()) return false;
    const int processed = sd_bus_process(get(), nullptr);
    if (processed < 0) return false;
    if (processed == 0) sd_bus_wait(get(), static_cast<std::uint64_t>(left.count()));
  }
  return true;
}

std::vector<BusMessage> SdBusConnection::ask(const std::vector<BusMessage>& calls, Deadline deadline) const {
  std::vector<BusMessage> answers(calls.size());
  std::vector<BusSlot> pending;
  std::size_t open = 0;
  for (std::size_t index = 0; index < calls.size(); ++index) {
    pending.push_back(callAsync(calls[index], [&answers, &open, index](sd_bus_message* reply) {
      --open;
      answers[index].reset(sd_bus_message_ref(reply));
    }));
    if (pending.back()) ++open;
  }
  // What is still missing then stays null.
  [[maybe_unused]] const bool complete = turnUntil(deadline, [&open] { return open == 0; });
  return answers;
}

BusMessage SdBusConnection::ask(BusMessage call, Deadline deadline) const {
  std::vector<BusMessage> calls;
  calls.push_back(std::move(call));
  return std::move(ask(calls, deadline).front());
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
