// SPDX-License-Identifier: MIT
#pragma once

#include "platform/power_sources.h"

namespace nimbo {

/// Power sources as IOKit tells of them, and of their changes on the main run loop.
class IokitPowerSources final : public PowerSources {
 public:
  [[nodiscard]] std::optional<std::vector<PowerSourceDescription>> list() const override;
  [[nodiscard]] Subscription observe(std::function<void()> changed) override;
};

}  // namespace nimbo
