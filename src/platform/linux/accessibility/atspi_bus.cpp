// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_bus.h"

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

BusMessage unlessError(BusMessage answer) { return isError(answer.get()) ? BusMessage() : std::move(answer); }

template <class... Arguments>
BusMessage askLauncher(const SdBusConnection& session, const char* interface, const char* method,
                       const Arguments&... arguments) {
  const BusMethod called{kLauncher, kLauncherPath, interface, method, BusActivation::allowed};
  return unlessError(
      session.ask(methodCall(session.get(), called, arguments...), std::chrono::steady_clock::now() + kLongestStart));
}

std::string accessibilityBusAddress(const std::string& sessionAddress) {
  const SdBusConnection session(nullptr, sessionAddress);
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

bool isAtspiEnabled(const SdBusConnection& session) {
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
  auto answers = bus_.ask(calls, deadline);
  for (BusMessage& answer : answers) answer = unlessError(std::move(answer));
  return answers;
}

BusMessage AtspiBus::ask(BusMessage call) const { return unlessError(bus_.ask(std::move(call), deadline())); }

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
  const SdBusConnection session(nullptr, sessionAddress);
  if (isAtspiEnabled(session)) return;
  (void)askLauncher(session, kBusProperties, "Set", kStatus, "IsEnabled", BusVariant(true));
}

}  // namespace nimbo
