// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {

/// Where on the accessibility bus an element lives.
struct AtspiReference {
  std::string name;
  std::string path;
  bool operator==(const AtspiReference&) const = default;
};

/// The bus on which applications show their interfaces to assistive technology, with the calls of
/// AT-SPI that are needed. What does not come in time or is no answer is absent. One thread at a time.
class AtspiBus {
 public:
  /// Null when there is no such bus, or it does not answer. It is started when it does not run yet.
  [[nodiscard]] static std::shared_ptr<AtspiBus> connect(const std::string& sessionAddress);

  [[nodiscard]] bool answers() const;

  /// For each call from now on.
  void setTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }
  /// When a call that is made now has to be answered.
  [[nodiscard]] Deadline deadline() const { return std::chrono::steady_clock::now() + timeout_; }

  /// Makes all calls at once. The answers are in the same order; null stands for an error or silence.
  [[nodiscard]] std::vector<BusMessage> ask(const std::vector<BusMessage>& calls, Deadline deadline) const;
  /// Lets time pass.
  void waitUntil(Deadline deadline) const;

  /// A call that is not made yet.
  template <class... Arguments>
  [[nodiscard]] BusMessage call(const AtspiReference& element, const char* interface, const char* method,
                                const Arguments&... arguments) const {
    return methodCall(bus_.get(), {element.name.c_str(), element.path.c_str(), interface, method}, arguments...);
  }

  /// The applications that show themselves, each as its root element.
  [[nodiscard]] std::vector<AtspiReference> applications() const;
  [[nodiscard]] std::optional<std::int64_t> processOf(const AtspiReference& element) const;
  [[nodiscard]] std::vector<AtspiReference> childrenOf(const AtspiReference& element) const;
  [[nodiscard]] std::optional<std::uint32_t> roleOf(const AtspiReference& element) const;
  /// Whether it tells its attributes; asking wakes an engine that builds its interface only then.
  [[nodiscard]] bool tellsAttributes(const AtspiReference& element) const;

 private:
  explicit AtspiBus(const std::string& address) : bus_(nullptr, address) {}
  [[nodiscard]] BusMessage ask(BusMessage call) const;

  const SdBusConnection bus_;
  std::chrono::milliseconds timeout_{1000};
};

inline constexpr const char* kAtspiAccessible = "org.a11y.atspi.Accessible";
inline constexpr const char* kAtspiText = "org.a11y.atspi.Text";
inline constexpr const char* kBusProperties = "org.freedesktop.DBus.Properties";

/// The elements of an "a(so)" answer; the ones that stand for nothing are left out.
[[nodiscard]] std::vector<AtspiReference> readReferences(const BusMessage& answer);

[[nodiscard]] std::optional<std::uint32_t> readNumber(const BusMessage& answer);

/// Has applications that start from now on show themselves; the session remembers it.
void enableAtspi(const std::string& sessionAddress);

}  // namespace nimbo
