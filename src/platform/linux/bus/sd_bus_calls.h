// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/linux/bus/bus_writer.h"
#include "platform/linux/bus/sd_bus_connection.h"

// Small helpers over sd-bus. All take a null bus or message, and then do nothing.
namespace nimbo {

/// Gets a reply or a signal; the message lives for the call only.
using BusHandler = std::function<void(sd_bus_message* message)>;

enum class BusActivation {
  allowed,    ///< the bus may start the service for the call
  forbidden,  ///< a service that does not run answers with an error
};

/// What is called, and where it is found on the bus.
struct BusMethod {
  const char* destination;
  const char* path;
  const char* interface;
  const char* member;
  BusActivation activation = BusActivation::forbidden;
};

/// A broadcast, and whose. `arguments` are the texts that it has to begin with.
struct BusSignal {
  const char* sender;
  const char* path;
  const char* interface;
  const char* member;
  std::vector<std::string> arguments{};
};

/// A method of the bus itself.
[[nodiscard]] BusMethod methodOfTheBus(const char* member);

/// A call without arguments yet. Null when there is no bus.
[[nodiscard]] BusMessage newCall(sd_bus* bus, const BusMethod& method);

/// Null when there is no bus or the arguments cannot be sent over one.
template <class... Arguments>
[[nodiscard]] BusMessage methodCall(sd_bus* bus, const BusMethod& method, const Arguments&... arguments) {
  BusMessage call = newCall(bus, method);
  if (!call) return call;
  BusWriter writer(call.get());
  (writer.add(arguments), ...);
  return writer.result() < 0 ? BusMessage() : std::move(call);
}

/// Sends `call`; `done` gets the reply, or an error message for which sd_bus_message_is_method_error
/// holds (also when none came in 25 s). Dropping the slot cancels. When the call cannot even be
/// sent the slot is null and `done` never called.
[[nodiscard]] BusSlot callAsync(const BusMessage& call, BusHandler done);

/// How a bus is told of the signals that are wanted.
[[nodiscard]] std::string matchRule(const BusSignal& signal);

/// Calls `received` for each matching signal, until the slot is dropped. The bus holds only broadcasts to the
/// rule's sender: where others than the user are on the bus, `received` asks `isFrom`.
[[nodiscard]] BusSlot addMatch(sd_bus* bus, const std::string& rule, BusHandler received);

/// The strings of an "as" at the read position; false when there is none.
[[nodiscard]] bool readStrings(sd_bus_message* message, std::vector<std::string>& strings);

[[nodiscard]] bool isError(sd_bus_message* reply);

/// Whether the bus says that it was sent by the owner of that unique name; never for an empty one.
[[nodiscard]] bool isFrom(sd_bus_message* message, std::string_view sender);

/// Offers `object` to others for as long as the slot lives; `table` outlives it.
[[nodiscard]] BusSlot addObject(sd_bus* bus, const char* path, const char* interface, const sd_bus_vtable* table,
                                void* object);

/// Tells others that these properties of such an object have changed; nothing when there are none.
void emitChanged(sd_bus* bus, const char* path, const char* interface, std::vector<const char*> properties);

// Adapters from a vtable's C callbacks to what answers them.
namespace bus_table {

template <class Class, class Type>
Class classOf(Type Class::*member);

/// A member function that answers a call.
template <auto kMember>
int method(sd_bus_message* call, void* object, sd_bus_error* error) {
  return (static_cast<decltype(classOf(kMember))*>(object)->*kMember)(call, error);
}

/// What returns a property's value: a function when it never changes, or a member function, which may also write it.
template <auto kValue>
int property(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
             sd_bus_message* reply, [[maybe_unused]] void* object, sd_bus_error* /*error*/) {
  BusWriter writer(reply);
  if constexpr (std::is_invocable_v<decltype(kValue)>) {
    writer.add(kValue());
  } else {
    using Object = const decltype(classOf(kValue));
    if constexpr (std::is_invocable_v<decltype(kValue), Object&, BusWriter&>) {
      (static_cast<Object*>(object)->*kValue)(writer);
    } else {
      writer.add((static_cast<Object*>(object)->*kValue)());
    }
  }
  return writer.result();
}

}  // namespace bus_table

}  // namespace nimbo
