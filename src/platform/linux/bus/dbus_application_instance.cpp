// SPDX-License-Identifier: MIT
#include "platform/linux/bus/dbus_application_instance.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/program_address.h"
#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

// What sd-bus makes of the bus's "there is nobody of that name".
constexpr int kNoOwner = -EHOSTUNREACH;

// Answers of org.freedesktop.DBus.RequestName.
constexpr int kPrimaryOwner = 1;
constexpr int kExists = 3;
constexpr int kAlreadyOwner = 4;

std::string reason(int result) { return std::generic_category().message(-result); }

std::uint64_t remaining(Deadline deadline) {
  using std::chrono::microseconds;
  const auto left = std::chrono::duration_cast<microseconds>(deadline - std::chrono::steady_clock::now());
  // sd-bus takes 0 for its own, longer limit.
  return static_cast<std::uint64_t>(std::max<microseconds::rep>(left.count(), 1));
}

// Others' calls wait for the loop meanwhile.
int call(const BusMessage& message, Deadline deadline, sd_bus_message** reply = nullptr) {
  if (!message) return -ENOTCONN;
  sd_bus* const bus = sd_bus_message_get_bus(message.get());
  return sd_bus_call(bus, message.get(), remaining(deadline), nullptr, reply);
}

}  // namespace

// Everybody on the bus belongs to the user; asking the bus about each caller's rights would block.
const sd_bus_vtable DbusApplicationInstance::kTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", bus_table::method<&DbusApplicationInstance::activate>,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Open", "asa{sv}", "", bus_table::method<&DbusApplicationInstance::open>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", bus_table::method<&DbusApplicationInstance::activateAction>,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

Result<InstanceRole, InstanceError> DbusApplicationInstance::claim(const std::vector<std::string>& links,
                                                                   ApplicationInstanceHandlers handlers) {
  const auto unreachable = [](const std::string& why) {
    return tl::unexpected(InstanceError{fmt::format("Nimbo needs a session bus, and none can be reached: {}.", why)});
  };
  if (session_.get() == nullptr) return unreachable(session_.failure());
  handlers_ = std::move(handlers);
  // The object stands before the name does: a later start may call at once.
  object_ = addObject(session_.get(), kProgramPath, kApplicationInterface, kTable, this);

  const Deadline deadline = std::chrono::steady_clock::now() + limit_;
  // sd-bus would wait much longer for a bus that accepts the connection and then says nothing.
  const auto isReady = [this] { return sd_bus_is_ready(session_.get()); };
  const int ready = session_.turnUntil(deadline, [&] { return isReady() != 0; }) ? isReady() : -ETIMEDOUT;
  if (ready < 0) return unreachable(reason(ready));
  int forwarded = 0;
  // Twice, because the other program may end between its name being seen and its answer.
  for (int attempt = 0; attempt < 2; ++attempt) {
    const int request = requestName(deadline);
    if (request < 0) return unreachable(reason(request));
    if (request == kPrimaryOwner || request == kAlreadyOwner) return InstanceRole::first;
    if (request != kExists) return unreachable("the bus gave an answer of no known meaning");
    forwarded = forward(links, deadline);
    if (forwarded >= 0) {
      object_.reset();
      return InstanceRole::later;
    }
    if (forwarded != kNoOwner) break;
  }
  return tl::unexpected(InstanceError{fmt::format("Nimbo is running but does not answer: {}.", reason(forwarded))});
}

void DbusApplicationInstance::release() {
  object_.reset();
  const auto message = methodCall(session_.get(), methodOfTheBus("ReleaseName"), kProgramName);
  // At once, as the loop turns no more; should that fail, the name goes with the connection.
  if (message) (void)sd_bus_send(session_.get(), message.get(), nullptr);
}

int DbusApplicationInstance::requestName(Deadline deadline) {
  constexpr std::uint32_t kDoNotQueue = 4;
  BusMessage reply;
  const int result =
      call(methodCall(session_.get(), methodOfTheBus("RequestName"), kProgramName, kDoNotQueue), deadline, reply.out());
  if (result < 0) return result;
  std::uint32_t outcome = 0;
  const int read = sd_bus_message_read(reply.get(), "u", &outcome);
  return read < 0 ? read : static_cast<int>(outcome);
}

int DbusApplicationInstance::forward(const std::vector<std::string>& links, Deadline deadline) {
  sd_bus* const bus = session_.get();
  if (links.empty())
    return call(methodCall(bus, {kProgramName, kProgramPath, kApplicationInterface, "Activate"}, NoOptions()),
                deadline);
  std::vector<std::string> repaired(links.size());
  std::ranges::transform(links, repaired.begin(), repairedUtf8);
  return call(methodCall(bus, {kProgramName, kProgramPath, kApplicationInterface, "Open"}, repaired, NoOptions()),
              deadline);
}

int DbusApplicationInstance::activate(sd_bus_message* call, sd_bus_error* /*error*/) {
  const auto handler = handlers_.activate;
  const int result = sd_bus_reply_method_return(call, "");
  if (handler) handler();
  return result;
}

int DbusApplicationInstance::open(sd_bus_message* call, sd_bus_error* error) {
  std::vector<std::string> links;
  if (!readStrings(call, links)) return -EINVAL;
  if (links.empty()) return activate(call, error);
  const auto handler = handlers_.open;
  const int result = sd_bus_reply_method_return(call, "");
  if (handler) handler(links);
  return result;
}

int DbusApplicationInstance::activateAction(sd_bus_message* call, sd_bus_error* error) {
  const char* action = nullptr;
  if (const int read = sd_bus_message_read(call, "s", &action); read < 0) return read;
  const auto found = handlers_.actions.find(action);
  if (found == handlers_.actions.end()) {
    return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "Nimbo has no such action.");
  }
  const auto handler = found->second;
  const int result = sd_bus_reply_method_return(call, "");
  handler();
  return result;
}

}  // namespace nimbo
