// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <functional>
#include <utility>

#include "platform/accessibility.h"

namespace nimbo {

/// Other applications by the system's accessibility interface.
class AxAccessibility final : public Accessibility {
 public:
  /// The process of a running application by its bundle identifier; on any thread.
  using ProcessFinder = std::function<std::optional<pid_t>(const std::string& bundleIdentifier)>;

  explicit AxAccessibility(ProcessFinder findProcess) : findProcess_(std::move(findProcess)) {}

  [[nodiscard]] bool isTrusted() override;
  void requestTrust() override;
  [[nodiscard]] std::unique_ptr<AccessibleApplication> application(const std::string& bundleIdentifier) override;

 private:
  const ProcessFinder findProcess_;
};

}  // namespace nimbo
