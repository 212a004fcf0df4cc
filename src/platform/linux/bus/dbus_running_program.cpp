// SPDX-License-Identifier: MIT
#include "platform/linux/bus/dbus_running_program.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/program_address.h"

namespace nimbo {
namespace {

constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

RemoteError errorOf(sd_bus_message* reply) {
  using Kind = RemoteError::Kind;
  if (reply == nullptr) return {Kind::unreachable, "Nimbo is running but does not answer."};
  const sd_bus_error* const error = sd_bus_message_get_error(reply);
  const std::string_view name = error->name;
  if (name == SD_BUS_ERROR_SERVICE_UNKNOWN || name == SD_BUS_ERROR_NAME_HAS_NO_OWNER) {
    return {Kind::notRunning, "Nimbo is not running."};
  }
  const std::string said = error->message == nullptr ? error->name : printableLine(error->message);
  if (name == kRefusedError) return {Kind::refused, said};
  return {Kind::unreachable, fmt::format("Nimbo answers with an error: {}.", said)};
}

// What is not as documented is left as it is.
void readProperty(sd_bus_message* reply, AwakeStatus& status) {
  const char* name = nullptr;
  sd_bus_message_read(reply, "s", &name);
  const std::string_view property = name == nullptr ? "" : name;
  int flag = 0;
  std::int64_t time = 0;
  const char* text = nullptr;
  if (property == "Active" && sd_bus_message_read(reply, "v", "b", &flag) > 0) {
    status.active = flag != 0;
  } else if (property == "Own" && sd_bus_message_read(reply, "v", "b", &flag) > 0) {
    status.own = flag != 0;
  } else if (property == "KeepsDisplayOn" && sd_bus_message_read(reply, "v", "b", &flag) > 0) {
    status.keepsDisplayOn = flag != 0;
  } else if (property == "EndsAt" && sd_bus_message_read(reply, "v", "x", &time) > 0) {
    status.endsAt = timeOf(time);
  } else if (property == "Message" && sd_bus_message_read(reply, "v", "s", &text) > 0) {
    status.message = printableLine(text);
  } else if (property == "Holders" && sd_bus_message_enter_container(reply, SD_BUS_TYPE_VARIANT, "as") > 0) {
    (void)readStrings(reply, status.holders);
    std::ranges::transform(status.holders, status.holders.begin(), printableLine);
    sd_bus_message_exit_container(reply);
  } else {
    sd_bus_message_skip(reply, "v");
  }
}

Result<void, RemoteError> withoutValue(const Result<BusMessage, RemoteError>& reply) {
  if (!reply) return tl::unexpected(reply.error());
  return {};
}

}  // namespace

template <class... Arguments>
Result<BusMessage, RemoteError> DbusRunningProgram::call(const char* interface, const char* member,
                                                         const Arguments&... arguments) {
  if (session_.get() == nullptr) {
    const std::string why = fmt::format("No session bus can be reached: {}.", session_.failure());
    return tl::unexpected(RemoteError{RemoteError::Kind::unreachable, why});
  }
  const BusMethod method{kProgramName, kProgramPath, interface, member};
  BusMessage reply =
      session_.ask(methodCall(session_.get(), method, arguments...), std::chrono::steady_clock::now() + limit_);
  if (!reply || isError(reply.get())) return tl::unexpected(errorOf(reply.get()));
  return reply;
}

Result<AwakeStatus, RemoteError> DbusRunningProgram::awake() {
  return call(kProperties, "GetAll", kAwakeInterface).map([](const BusMessage& reply) {
    AwakeStatus status;
    sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_ARRAY, "{sv}");
    while (sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
      readProperty(reply.get(), status);
      sd_bus_message_exit_container(reply.get());
    }
    return status;
  });
}

Result<void, RemoteError> DbusRunningProgram::start(std::optional<Time> until, bool keepDisplayOn) {
  return withoutValue(call(kAwakeInterface, "Start", secondsOf(until), keepDisplayOn));
}

Result<void, RemoteError> DbusRunningProgram::stop() { return withoutValue(call(kAwakeInterface, "Stop")); }

Result<void, RemoteError> DbusRunningProgram::extend(std::chrono::seconds by) {
  return withoutValue(call(kAwakeInterface, "Extend", std::int64_t{by.count()}));
}

Result<void, RemoteError> DbusRunningProgram::hold(const std::string& name, bool keepDisplayOn) {
  return withoutValue(call(kAwakeInterface, "Hold", repairedUtf8(name), keepDisplayOn));
}

Result<void, RemoteError> DbusRunningProgram::open(const std::vector<std::string>& links) {
  if (links.empty()) return withoutValue(call(kApplicationInterface, "Activate", NoOptions()));
  return withoutValue(call(kApplicationInterface, "Open", links, NoOptions()));
}

Result<void, RemoteError> DbusRunningProgram::act(const std::string& action) {
  return withoutValue(call(kApplicationInterface, "ActivateAction", action, NoParameters(), NoOptions()));
}

}  // namespace nimbo
