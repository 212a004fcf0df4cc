// SPDX-License-Identifier: MIT
#include "platform/linux/bus/sd_bus_calls.h"

#include <fmt/format.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace nimbo {
namespace {

int onMessage(sd_bus_message* message, void* handler, sd_bus_error* /*error*/) {
  (*static_cast<BusHandler*>(handler))(message);
  return 0;
}

// The slot, not its owner, keeps the handler: a handler may drop its own slot while it runs.
BusSlot keeping(std::unique_ptr<BusHandler> handler, BusSlot slot) {
  sd_bus_slot_set_destroy_callback(slot.get(), [](void* kept) { delete static_cast<BusHandler*>(kept); });
  handler.release();  // NOLINT(bugprone-unused-return-value): the slot's destroy callback deletes it
  return slot;
}

}  // namespace

BusMethod methodOfTheBus(const char* member) {
  return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member};
}

BusMessage newCall(sd_bus* bus, const BusMethod& method) {
  BusMessage call;
  const auto& [destination, path, interface, member, activation] = method;
  if (bus == nullptr || sd_bus_message_new_method_call(bus, call.out(), destination, path, interface, member) < 0) {
    return {};
  }
  sd_bus_message_set_auto_start(call.get(), activation == BusActivation::allowed ? 1 : 0);
  return call;
}

BusSlot callAsync(const BusMessage& call, BusHandler done) {
  if (!call) return {};
  auto handler = std::make_unique<BusHandler>(std::move(done));
  BusSlot slot;
  sd_bus* const bus = sd_bus_message_get_bus(call.get());
  if (sd_bus_call_async(bus, slot.out(), call.get(), onMessage, handler.get(), 0) < 0) return {};
  return keeping(std::move(handler), std::move(slot));
}

std::string matchRule(const BusSignal& signal) {
  std::string rule = fmt::format("type='signal',sender='{}',path='{}',interface='{}',member='{}'", signal.sender,
                                 signal.path, signal.interface, signal.member);
  for (std::size_t index = 0; index < signal.arguments.size(); ++index) {
    rule += fmt::format(",arg{}='{}'", index, signal.arguments[index]);
  }
  return rule;
}

BusSlot addMatch(sd_bus* bus, const std::string& rule, BusHandler received) {
  if (bus == nullptr) return {};
  auto handler = std::make_unique<BusHandler>(std::move(received));
  BusSlot slot;
  // Without an install callback a refused match would end the connection.
  const auto installed = [](sd_bus_message*, void*, sd_bus_error*) { return 0; };
  if (sd_bus_add_match_async(bus, slot.out(), rule.c_str(), onMessage, installed, handler.get()) < 0) return {};
  return keeping(std::move(handler), std::move(slot));
}

BusSlot addObject(sd_bus* bus, const char* path, const char* interface, const sd_bus_vtable* table, void* object) {
  BusSlot slot;
  if (bus != nullptr) sd_bus_add_object_vtable(bus, slot.out(), path, interface, table, object);
  return slot;
}

void emitChanged(sd_bus* bus, const char* path, const char* interface, std::vector<const char*> properties) {
  if (properties.empty()) return;
  properties.push_back(nullptr);
  // The vtable promises not to change the names.
  sd_bus_emit_properties_changed_strv(bus, path, interface, const_cast<char**>(properties.data()));
}

bool readStrings(sd_bus_message* message, std::vector<std::string>& strings) {
  if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "s") < 0) return false;
  const char* text = nullptr;
  while (sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &text) > 0) strings.emplace_back(text);
  return sd_bus_message_exit_container(message) >= 0;
}

bool isError(sd_bus_message* reply) { return sd_bus_message_is_method_error(reply, nullptr) > 0; }

bool isFrom(sd_bus_message* message, std::string_view sender) {
  const char* const actual = sd_bus_message_get_sender(message);
  return actual != nullptr && !sender.empty() && actual == sender;
}

}  // namespace nimbo
