// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/accessibility.h"
#include "platform/linux/accessibility/atspi_bus.h"

namespace nimbo {

/// Other applications as they show themselves to assistive technology over AT-SPI. This program is let
/// in wherever there is an accessibility bus; Linux desktops ask nobody. The connection lasts as long as
/// an application that was given out.
class AtspiAccessibility final : public Accessibility {
 public:
  /// `sessionAddress` is that of the session bus, `procRoot` where procfs is mounted.
  explicit AtspiAccessibility(std::string sessionAddress, std::string procRoot = "/proc")
      : sessionAddress_(std::move(sessionAddress)), procRoot_(std::move(procRoot)) {}

  [[nodiscard]] bool isTrusted() override { return bus() != nullptr; }
  /// There is nobody to ask. What is missing is that applications offer their content, and that starts the bus,
  /// too. Takes four seconds at most.
  void requestTrust() override { enableAtspi(sessionAddress_); }
  [[nodiscard]] std::unique_ptr<AccessibleApplication> application(const std::string& bundleIdentifier) override;

 private:
  [[nodiscard]] std::shared_ptr<AtspiBus> bus();

  const std::string sessionAddress_;
  const std::string procRoot_;
  std::weak_ptr<AtspiBus> bus_;
};

}  // namespace nimbo
