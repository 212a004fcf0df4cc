// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_bus.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

constexpr const char* kLauncher = "org.a11y.Bus";
constexpr const char* kLauncherPath = "/org/a11y/bus";
constexpr const char* kStatus = "org.a11y.Status";

constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kRootPath = "/org/a11y/atspi/accessible/root";
constexpr std::string_view kNullPath = "/org/a11y/atspi/null";

// Starting the accessibility bus takes a program or two.
constexpr std::chrono::seconds kLongestStart{2};

std::vector<BusMessage> askAll(const BoundedBus& bus, const std::vector<BusMessage>& calls, Deadline deadline) {
  std::vector<BusMessage> answers(calls.size());
  std::vector<BusSlot> pending;
  std::size_t open = 0;
  for (std::size_t index = 0; index < calls.size(); ++index) {
    pending.push_back(callAsync(calls[index], [&answers, &open, index](sd_bus_message* reply) {
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

template <class... Arguments>
BusMessage askLauncher(const BoundedBus& session, const char* interface, const char* method,
                       const Arguments&... arguments) {
  const BusMethod called{kLauncher, kLauncherPath, interface, method, BusActivation::allowed};
  return askOne(session, methodCall(session.get(), called, arguments...),
                std::chrono::steady_clock::now() + kLongestStart);
}

std::string accessibilityBusAddress(const std::string& sessionAddress) {
  const BoundedBus session(sessionAddress);
  const BusMessage answer = askLauncher(session, kLauncher, "GetAddress");
  const char* address = "";
  if (answer) sd_bus_message_read(answer.get(), "s", &address);
  return address;
}

// Of the other kinds of address one runs a program and another looks a host up.
bool isLocal(std::string_view addresses) {
  bool local = !addresses.empty();
  while (!addresses.empty()) local = takeUntil(addresses, ';').starts_with("unix:") && local;
  return local;
}

bool isAtspiEnabled(const BoundedBus& session) {
  const BusMessage answer = askLauncher(session, kBusProperties, "Get", kStatus, "IsEnabled");
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

bool AtspiBus::answers() const { return static_cast<bool>(ask(methodCall(bus_.get(), methodOfTheBus("GetId")))); }

std::vector<BusMessage> AtspiBus::ask(const std::vector<BusMessage>& calls, Deadline deadline) const {
  return askAll(bus_, calls, deadline);
}

BusMessage AtspiBus::ask(BusMessage call) const { return askOne(bus_, std::move(call), deadline()); }

void AtspiBus::waitUntil(Deadline deadline) const {
  [[maybe_unused]] const bool never = bus_.turnUntil(deadline, [] { return false; });
}

std::vector<AtspiReference> AtspiBus::applications() const { return childrenOf({kRegistry, kRootPath}); }

std::optional<std::int64_t> AtspiBus::processOf(const AtspiReference& element) const {
  return readNumber(ask(methodCall(bus_.get(), methodOfTheBus("GetConnectionUnixProcessID"), element.name)));
}

std::vector<AtspiReference> AtspiBus::childrenOf(const AtspiReference& element) const {
  return readReferences(ask(call(element, kAtspiAccessible, "GetChildren")));
}

std::optional<std::uint32_t> AtspiBus::roleOf(const AtspiReference& element) const {
  return readNumber(ask(call(element, kAtspiAccessible, "GetRole")));
}

bool AtspiBus::tellsAttributes(const AtspiReference& element) const {
  return static_cast<bool>(ask(call(element, kAtspiAccessible, "GetAttributes")));
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
  (void)askLauncher(session, kBusProperties, "Set", kStatus, "IsEnabled", BusVariant(true));
}

}  // namespace nimbo
