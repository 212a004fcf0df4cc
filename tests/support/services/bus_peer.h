// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/loop/sd_event_main_loop.h"

namespace nimbo {

/// The loop that the code under test and its peers share, turned by the test.
class BusLoop {
 public:
  [[nodiscard]] SdEventMainLoop& main() { return loop_; }
  [[nodiscard]] sd_event* event() const { return loop_.event(); }

  /// Dispatches until `done` holds; false when it did not within `bound`.
  [[nodiscard]] bool runUntil(const std::function<bool()>& done,
                              std::chrono::milliseconds bound = std::chrono::seconds(10)) const {
    using std::chrono::steady_clock;
    const auto deadline = steady_clock::now() + bound;
    while (!done()) {
      const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - steady_clock::now()).count();
      if (left <= 0) return false;
      sd_event_run(event(), static_cast<std::uint64_t>(left));
    }
    return true;
  }

 private:
  SdEventMainLoop loop_;
};

/// Another program on the bus.
class BusPeer {
 public:
  BusPeer(BusLoop& loop, const std::string& address) : loop_(loop), connection_(loop.event(), address) {
    if (connection_.get() == nullptr) throw std::runtime_error("no bus: " + connection_.failure());
  }

  [[nodiscard]] sd_bus* bus() const { return connection_.get(); }
  [[nodiscard]] BusLoop& loop() const { return loop_; }

  using Fill = std::function<void(sd_bus_message*)>;

  /// Calls a method and waits for the reply, which may be an error; null when none came.
  BusMessage call(const std::string& destination, const char* path, const char* interface, const char* member,
                  const Fill& fill = {}) const {
    const BusMessage call = methodCall(bus(), {destination.c_str(), path, interface, member});
    if (call && fill) fill(call.get());
    BusMessage answer;
    const BusSlot pending =
        callAsync(call, [&answer](sd_bus_message* reply) { answer.reset(sd_bus_message_ref(reply)); });
    [[maybe_unused]] const bool answered = loop_.runUntil([&answer] { return static_cast<bool>(answer); });
    return answer;
  }

  /// Sends a signal to one program alone.
  void tell(const std::string& destination, const char* path, const char* interface, const char* member,
            const Fill& fill) const {
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_signal(bus(), &message, path, interface, member) < 0) return;
    const BusMessage signal(message);
    fill(signal.get());
    sd_bus_send_to(bus(), signal.get(), destination.c_str(), nullptr);
  }

  /// A round trip: everything that `destination` has sent before is here afterwards.
  void settle(const std::string& destination) const { call(destination, "/", "org.freedesktop.DBus.Peer", "Ping"); }

  void own(const std::string& name) const {
    callBus("RequestName", [&name](sd_bus_message* call) { sd_bus_message_append(call, "su", name.c_str(), 0U); });
  }

  void release(const std::string& name) const {
    callBus("ReleaseName", [&name](sd_bus_message* call) { sd_bus_message_append(call, "s", name.c_str()); });
  }

  /// Waits until somebody has `name`, or nobody.
  [[nodiscard]] bool waitForName(const std::string& name, bool owned) const {
    std::optional<std::string> owner;
    const BusNameWatch watch(bus(), name, [&owner](const std::string& current) { owner = current; });
    return loop_.runUntil([&] { return owner && owner->empty() != owned; });
  }

  /// Empty when nobody has the name.
  [[nodiscard]] std::string ownerOf(const std::string& name) const {
    const BusMessage reply =
        callBus("GetNameOwner", [&name](sd_bus_message* call) { sd_bus_message_append(call, "s", name.c_str()); });
    const char* owner = "";
    if (reply && !isError(reply.get())) sd_bus_message_read(reply.get(), "s", &owner);
    return owner;
  }

 private:
  BusMessage callBus(const char* member, const Fill& fill) const {
    return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member, fill);
  }

  BusLoop& loop_;
  SdBusConnection connection_;
};

/// Whether `reply` is an error, of this name if one is given.
[[nodiscard]] inline bool failed(const BusMessage& reply, const char* name = nullptr) {
  return reply && sd_bus_message_is_method_error(reply.get(), name) > 0;
}
[[nodiscard]] inline bool succeeded(const BusMessage& reply) { return reply && !failed(reply); }

}  // namespace nimbo
