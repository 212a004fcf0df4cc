// SPDX-License-Identifier: MIT
#include "platform/linux/remote/dbus_running_program.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/program_address.h"
#include "platform/temperature_sensor.h"

namespace nimbo {
namespace {

constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr std::size_t kLongestText = 500;  // bytes
constexpr std::size_t kMostWindows = 50;

RemoteError unreachable(const std::string& why) {
  return {RemoteError::Kind::unreachable, fmt::format("No session bus can be reached: {}.", why)};
}

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

/// Of what another program sends: one printable line of bounded length.
std::string lineOf(const char* text) { return printableLine(std::string_view(text).substr(0, kLongestText)); }

/// The contents of a variant of that type; nothing is read of one of another.
template <class... Parts>
bool readVariant(sd_bus_message* variant, const char* type, Parts... parts) {
  return sd_bus_message_read(variant, "v", type, parts...) > 0;
}

// These read a property's value, or nothing when it is another or not as documented, and tell which. Figures that
// cannot be are read and left out.

bool readProperty(std::string_view name, sd_bus_message* variant, AwakeStatus& status) {
  int flag = 0;
  std::int64_t time = 0;
  const char* text = nullptr;
  if (name == "Active" && readVariant(variant, "b", &flag)) {
    status.active = flag != 0;
  } else if (name == "Own" && readVariant(variant, "b", &flag)) {
    status.own = flag != 0;
  } else if (name == "KeepsDisplayOn" && readVariant(variant, "b", &flag)) {
    status.keepsDisplayOn = flag != 0;
  } else if (name == "EndsAt" && readVariant(variant, "x", &time)) {
    status.endsAt = timeOf(time);
  } else if (name == "Message" && readVariant(variant, "s", &text)) {
    status.message = lineOf(text);
  } else if (name == "Holders" && sd_bus_message_enter_container(variant, SD_BUS_TYPE_VARIANT, "as") > 0) {
    (void)readStrings(variant, status.holders);
    std::ranges::transform(status.holders, status.holders.begin(), printableLine);
    sd_bus_message_exit_container(variant);
  } else {
    return false;
  }
  return true;
}

std::vector<UsageWindow> readWindows(sd_bus_message* message) {
  std::vector<UsageWindow> windows;
  const char* title = nullptr;
  double used = 0;
  std::int64_t resetsAt = 0;
  sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(sdx)");
  while (sd_bus_message_read(message, "(sdx)", &title, &used, &resetsAt) > 0) {
    if (windows.size() == kMostWindows || !(used >= 0 && used <= 100)) continue;
    windows.push_back({lineOf(title), used, timeOf(resetsAt)});
  }
  sd_bus_message_exit_container(message);
  return windows;
}

bool readProperty(std::string_view name, sd_bus_message* variant, UsageStates& states) {
  const auto provider = std::ranges::find(kAllUsageProviders, name, displayName);
  constexpr const char* kType = "bsxsa(sdx)";
  if (provider == kAllUsageProviders.end() ||
      sd_bus_message_enter_container(variant, SD_BUS_TYPE_VARIANT, "(bsxsa(sdx))") <= 0) {
    return false;
  }
  int enabled = 0;
  const char* message = "";
  std::int64_t fetchedAt = 0;
  const char* source = "";
  sd_bus_message_enter_container(variant, SD_BUS_TYPE_STRUCT, kType);
  sd_bus_message_read(variant, "bsxs", &enabled, &message, &fetchedAt, &source);
  UsageSnapshot snapshot{.windows = readWindows(variant)};
  sd_bus_message_exit_container(variant);
  sd_bus_message_exit_container(variant);

  UsageState& state = states[*provider];
  state.enabled = enabled != 0;
  if (*message != '\0') state.message = lineOf(message);
  if (*source != '\0') snapshot.source = lineOf(source);
  if (const auto time = timeOf(fetchedAt); time && !snapshot.windows.empty()) {
    snapshot.fetchedAt = *time;
    state.snapshot = std::move(snapshot);
  }
  return true;
}

MemoryPressure pressureOf(std::string_view word) {
  for (const auto pressure : {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical}) {
    if (word == pressureWord(pressure)) return pressure;
  }
  return MemoryPressure::unknown;
}

/// Whether the parts fit into the whole.
bool isPossible(const MemorySnapshot& memory) {
  std::uint64_t left = memory.total;
  for (const std::uint64_t part : {memory.app, memory.wired, memory.compressed}) {
    if (part > left) return false;
    left -= part;
  }
  return memory.total > 0;
}

bool readProperty(std::string_view name, sd_bus_message* variant, SystemReadings& readings) {
  int failed = 0;
  double value = 0;
  std::int64_t swap = 0;
  const char* pressure = nullptr;
  MemorySnapshot memory;
  if (name == "Memory" && readVariant(variant, "(ttttxs)", &memory.total, &memory.app, &memory.wired,
                                      &memory.compressed, &swap, &pressure)) {
    if (swap >= 0) memory.swap = static_cast<std::uint64_t>(swap);
    memory.pressure = pressureOf(pressure);
    if (isPossible(memory)) readings.memory = memory;
  } else if (name == "MemoryFailed" && readVariant(variant, "b", &failed)) {
    readings.memoryFailed = failed != 0;
  } else if (name == "Cpu" && readVariant(variant, "d", &value)) {
    if (value >= 0 && value <= 1) readings.cpu = value;
  } else if (name == "Temperature" && readVariant(variant, "d", &value)) {
    if (isPlausibleTemperature(value)) readings.temperature = value;
  } else {
    return false;
  }
  return true;
}

/// Waits for the bus. False as soon as nobody reads this process's output any more.
bool isReadWhileWaiting(sd_bus* bus) {
  const int events = sd_bus_get_events(bus);
  std::array<pollfd, 2> wait{{{sd_bus_get_fd(bus), static_cast<short>(std::max(events, 0)), 0}, {STDOUT_FILENO, 0, 0}}};
  std::uint64_t wake = 0;  // µs of the monotonic clock
  const bool timed = sd_bus_get_timeout(bus, &wake) > 0 && wake != UINT64_MAX;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(std::chrono::microseconds(timed ? wake : 0) - now);
  ::poll(wait.data(), wait.size(), timed ? static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX)) : -1);
  return wait[1].revents == 0;
}

const char* interfaceOf(RemotePart part) {
  switch (part) {
    case RemotePart::usage:
      return kUsageInterface;
    case RemotePart::readings:
      return kResourcesInterface;
    case RemotePart::awake:
      break;
  }
  return kAwakeInterface;
}

Result<void, RemoteError> withoutValue(const Result<BusMessage, RemoteError>& reply) {
  if (!reply) return tl::unexpected(reply.error());
  return {};
}

}  // namespace

template <class... Arguments>
Result<BusMessage, RemoteError> DbusRunningProgram::call(const char* interface, const char* member,
                                                         const Arguments&... arguments) {
  if (session_.get() == nullptr) return tl::unexpected(unreachable(session_.failure()));
  const BusMethod method{kProgramName, kProgramPath, interface, member};
  BusMessage reply =
      session_.ask(methodCall(session_.get(), method, arguments...), std::chrono::steady_clock::now() + limit_);
  if (!reply || isError(reply.get())) return tl::unexpected(errorOf(reply.get()));
  return reply;
}

template <class Value>
Result<Value, RemoteError> DbusRunningProgram::properties(const char* interface) {
  return call(kProperties, "GetAll", interface).and_then([](const BusMessage& reply) -> Result<Value, RemoteError> {
    Value value{};
    if (sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_ARRAY, "{sv}") <= 0) {
      return tl::unexpected(RemoteError{RemoteError::Kind::unreachable, "Nimbo answers with something else."});
    }
    while (sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
      const char* name = nullptr;
      sd_bus_message_read(reply.get(), "s", &name);
      if (!readProperty(name, reply.get(), value)) sd_bus_message_skip(reply.get(), "v");
      sd_bus_message_exit_container(reply.get());
    }
    return value;
  });
}

Result<AwakeStatus, RemoteError> DbusRunningProgram::awake() { return properties<AwakeStatus>(kAwakeInterface); }

Result<UsageStates, RemoteError> DbusRunningProgram::usage() { return properties<UsageStates>(kUsageInterface); }

Result<SystemReadings, RemoteError> DbusRunningProgram::readings() {
  return properties<SystemReadings>(kResourcesInterface);
}

Result<void, RemoteError> DbusRunningProgram::watch(RemotePart part, const std::function<void()>& look) {
  sd_bus* const bus = session_.get();
  bool appeared = false;
  bool news = false;
  const BusSignal changed{kProgramName, kProgramPath, kProperties, "PropertiesChanged", {interfaceOf(part)}};
  const BusSlot changes = addMatch(bus, matchRule(changed), [&](sd_bus_message* /*signal*/) { news = true; });
  const BusNameWatch presence(bus, kProgramName, [&](const std::string& owner) {
    appeared = !owner.empty();
    news = true;
  });
  while (bus != nullptr) {
    if (std::exchange(appeared, false) && part == RemotePart::readings) {
      (void)call(kResourcesInterface, "Watch",
                 std::vector<std::string>{"Memory", "MemoryFailed", "Cpu", "Temperature"});
    }
    if (std::exchange(news, false)) look();
    const int processed = sd_bus_process(bus, nullptr);
    if (processed < 0) break;
    if (processed == 0 && !news && !isReadWhileWaiting(bus)) return {};
  }
  return tl::unexpected(unreachable(bus == nullptr ? session_.failure() : "it has ended"));
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
