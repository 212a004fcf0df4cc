// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/accessibility.h"
#include "platform/linux/accessibility/atspi_bus.h"

namespace nimbo {

/// A running application, which may not show itself on the accessibility bus: then it has no windows
/// here until it is started anew.
class AtspiApplication final : public AccessibleApplication {
 public:
  /// `bus` may be null, and then `root` absent.
  AtspiApplication(std::string sessionAddress, std::shared_ptr<AtspiBus> bus, std::optional<AtspiReference> root);

  void setMessagingTimeout(std::chrono::milliseconds limit) override;
  void exposeContent(const std::stop_token& stop) override;
  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) override;

 private:
  class Patience;

  [[nodiscard]] std::vector<AtspiReference> wokenWindows(const Patience& patience) const;
  [[nodiscard]] bool showsAPage(const AtspiReference& window, const Patience& patience) const;
  void waitForPages(const std::vector<AtspiReference>& windows, const Patience& patience) const;

  const std::string sessionAddress_;
  const std::shared_ptr<AtspiBus> bus_;
  const std::optional<AtspiReference> root_;
};

}  // namespace nimbo
