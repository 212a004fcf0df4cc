// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/bus/sd_bus_handles.h"

// Small helpers over sd-bus. All take a null bus or message, and then do nothing.
namespace nimbo {

/// Gets a reply or a signal; the message lives for the call only.
using BusHandler = std::function<void(sd_bus_message* message)>;

enum class BusActivation {
  allowed,    ///< the bus may start the service for this call
  forbidden,  ///< a service that does not run answers with an error
};

/// Null when there is no bus.
[[nodiscard]] BusMessage methodCall(sd_bus* bus, const char* destination, const char* path, const char* interface,
                                    const char* member, BusActivation activation = BusActivation::forbidden);

/// Sends `call`; `done` gets the reply, or an error message for which sd_bus_message_is_method_error
/// holds (also when none came in 25 s). Dropping the slot cancels. When the call cannot even be
/// sent the slot is null and `done` never called.
[[nodiscard]] BusSlot callAsync(sd_bus* bus, const BusMessage& call, BusHandler done);

/// Calls `received` for each matching signal, until the slot is dropped. The bus holds only broadcasts to the
/// rule's sender: where others than the user are on the bus, `received` asks `isFrom`.
[[nodiscard]] BusSlot addMatch(sd_bus* bus, const char* rule, BusHandler received);

/// The strings of an "as" at the read position; false when there is none.
[[nodiscard]] bool readStrings(sd_bus_message* message, std::vector<std::string>& strings);

[[nodiscard]] bool isError(sd_bus_message* reply);

/// Whether the bus says that it was sent by the owner of that unique name; never for an empty one.
[[nodiscard]] bool isFrom(sd_bus_message* message, std::string_view sender);

/// Adapters from a vtable's C callbacks to the member functions that answer.
template <class Object, int (Object::*kMember)(sd_bus_message*, sd_bus_error*)>
int busMethod(sd_bus_message* call, void* object, sd_bus_error* error) {
  return (static_cast<Object*>(object)->*kMember)(call, error);
}
template <class Object, int (Object::*kMember)(sd_bus_message*) const>
int busProperty(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
                sd_bus_message* reply, void* object, sd_bus_error* /*error*/) {
  return (static_cast<const Object*>(object)->*kMember)(reply);
}

}  // namespace nimbo
