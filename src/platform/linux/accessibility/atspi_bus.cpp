// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_bus.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

constexpr const char* kLauncher = "org.a11y.Bus";
constexpr const char* kLauncherPath = "/org/a11y/bus";
constexpr const char* kStatus = "org.a11y.Status";

constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kRootPath = "/org/a11y/atspi/accessible/root";
constexpr std::string_view kNullPath = "/org/a11y/atspi/null";

// Starting the accessibility bus takes a program or two.
constexpr std::chrono::seconds kLauncherPatience{2};

std::vector<BusMessage> askAll(const BoundedBus& bus, const std::vector<BusMessage>& calls, Deadline deadline) {
  std::vector<BusMessage> answers(calls.size());
  std::vector<BusSlot> pending;
  std::size_t open = 0;
  for (std::size_t index = 0; index < calls.size(); ++index) {
    pending.push_back(callAsync(bus.get(), calls[index], [&answers, &open, index](sd_bus_message* reply) {
      --open;
      if (!isError(reply)) answers[index].reset(sd_bus_message_ref(reply));
    }));
    if (pending.back()) ++open;
  }
  // What is still missing then stays null.
  [[maybe_unused]] const bool complete = bus.turnUntil(deadline, [&open] { return open == 0; });
  return answers;
}

BusMessage askOne(const BoundedBus& bus, BusMessage call, Deadline deadline) {
  std::vector<BusMessage> calls;
  calls.push_back(std::move(call));
  return std::move(askAll(bus, calls, deadline).front());
}

Deadline launcherDeadline() { return std::chrono::steady_clock::now() + kLauncherPatience; }

BusMessage launcherCall(const BoundedBus& session, const char* interface, const char* method) {
  return methodCall(session.get(), kLauncher, kLauncherPath, interface, method, BusActivation::allowed);
}

std::string accessibilityBusAddress(const std::string& sessionAddress) {
  const BoundedBus session(sessionAddress);
  const BusMessage answer = askOne(session, launcherCall(session, kLauncher, "GetAddress"), launcherDeadline());
  const char* address = "";
  if (answer) sd_bus_message_read(answer.get(), "s", &address);
  return address;
}

// Of the other kinds of address one runs a program and another looks a host up.
bool isLocal(std::string_view addresses) {
  bool local = !addresses.empty();
  while (!addresses.empty()) {
    local = local && addresses.starts_with("unix:");
    addresses.remove_prefix(std::min(addresses.find(';'), addresses.size() - 1) + 1);
  }
  return local;
}

bool isAtspiEnabled(const BoundedBus& session) {
  BusMessage call = launcherCall(session, kProperties, "Get");
  if (call) sd_bus_message_append(call.get(), "ss", kStatus, "IsEnabled");
  const BusMessage answer = askOne(session, std::move(call), launcherDeadline());
  int enabled = 0;
  return answer && sd_bus_message_read(answer.get(), "v", "b", &enabled) > 0 && enabled != 0;
}

}  // namespace

std::shared_ptr<AtspiBus> AtspiBus::connect(const std::string& sessionAddress) {
  const std::string address = accessibilityBusAddress(sessionAddress);
  if (!isLocal(address)) return nullptr;
  std::shared_ptr<AtspiBus> bus(new AtspiBus(address));
  return bus->answers() ? bus : nullptr;
}

bool AtspiBus::answers() const { return static_cast<bool>(ask(methodCall(bus_.get(), kBus, kBusPath, kBus, "GetId"))); }

std::vector<BusMessage> AtspiBus::ask(const std::vector<BusMessage>& calls, Deadline deadline) const {
  return askAll(bus_, calls, deadline);
}

BusMessage AtspiBus::ask(BusMessage call) const { return askOne(bus_, std::move(call), deadline()); }

void AtspiBus::waitUntil(Deadline deadline) const {
  [[maybe_unused]] const bool never = bus_.turnUntil(deadline, [] { return false; });
}

BusMessage AtspiBus::methodOf(const AtspiReference& element, const char* interface, const char* method) const {
  return methodCall(bus_.get(), element.name.c_str(), element.path.c_str(), interface, method);
}

BusMessage AtspiBus::propertyOf(const AtspiReference& element, const char* property) const {
  BusMessage call = methodOf(element, kProperties, "Get");
  if (call) sd_bus_message_append(call.get(), "ss", kAtspiAccessible, property);
  return call;
}

std::vector<AtspiReference> AtspiBus::applications() const { return childrenOf({kRegistry, kRootPath}); }

std::optional<std::int64_t> AtspiBus::processOf(const AtspiReference& element) const {
  BusMessage call = methodCall(bus_.get(), kBus, kBusPath, kBus, "GetConnectionUnixProcessID");
  if (call) sd_bus_message_append(call.get(), "s", element.name.c_str());
  return readNumber(ask(std::move(call)));
}

std::vector<AtspiReference> AtspiBus::childrenOf(const AtspiReference& element) const {
  return readReferences(ask(methodOf(element, kAtspiAccessible, "GetChildren")));
}

std::optional<std::uint32_t> AtspiBus::roleOf(const AtspiReference& element) const {
  return readNumber(ask(methodOf(element, kAtspiAccessible, "GetRole")));
}

bool AtspiBus::tellsAttributes(const AtspiReference& element) const {
  return static_cast<bool>(ask(methodOf(element, kAtspiAccessible, "GetAttributes")));
}

std::vector<AtspiReference> readReferences(const BusMessage& answer) {
  std::vector<AtspiReference> references;
  if (!answer || sd_bus_message_enter_container(answer.get(), SD_BUS_TYPE_ARRAY, "(so)") < 0) return references;
  const char* name = nullptr;
  const char* path = nullptr;
  while (sd_bus_message_read(answer.get(), "(so)", &name, &path) > 0) {
    if (*name != '\0' && path != kNullPath) references.push_back({name, path});
  }
  return references;
}

std::optional<std::uint32_t> readNumber(const BusMessage& answer) {
  std::uint32_t number = 0;
  return answer && sd_bus_message_read(answer.get(), "u", &number) > 0 ? std::optional(number) : std::nullopt;
}

void enableAtspi(const std::string& sessionAddress) {
  const BoundedBus session(sessionAddress);
  if (isAtspiEnabled(session)) return;
  BusMessage call = launcherCall(session, kProperties, "Set");
  if (call) sd_bus_message_append(call.get(), "ssv", kStatus, "IsEnabled", "b", 1);
  [[maybe_unused]] const BusMessage answer = askOne(session, std::move(call), launcherDeadline());
}

}  // namespace nimbo
