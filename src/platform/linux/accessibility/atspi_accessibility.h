// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "platform/accessibility.h"
#include "platform/linux/accessibility/atspi_bus.h"

namespace nimbo {

/// Other applications as they show themselves to assistive technology over AT-SPI. This program is let
/// in wherever there is an accessibility bus; Linux desktops ask nobody. The connection lasts as long as
/// an application that was given out.
class AtspiAccessibility final : public Accessibility {
 public:
  /// `sessionAddress` is that of the session bus, `procRoot` where procfs is mounted.
  explicit AtspiAccessibility(std::string sessionAddress, std::string procRoot = "/proc");

  [[nodiscard]] bool isTrusted() override;
  /// Takes four seconds at most.
  void requestTrust() override;
  [[nodiscard]] std::unique_ptr<AccessibleApplication> application(const std::string& bundleIdentifier) override;

 private:
  [[nodiscard]] std::shared_ptr<AtspiBus> bus();

  const std::string sessionAddress_;
  const std::string procRoot_;
  std::weak_ptr<AtspiBus> bus_;
};

}  // namespace nimbo
