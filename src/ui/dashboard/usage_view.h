// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/dates.h"
#include "ui/dashboard/usage_page_content.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// The AI page without its pixels: one card for each provider with its limit windows. Main thread only.
class UsageView {
 public:
  /// Both outlive the view.
  UsageView(const Clock& clock, const Dates& dates) : clock_(clock), dates_(dates) {}

  /// `note` takes the place of the usual line below the cards.
  void update(const UsageStates& states, const std::optional<std::string>& note);
  void setOrder(std::vector<UsageProvider> order);

  [[nodiscard]] UsagePageContent content(bool visible) const;

  /// `content` is another one now.
  std::function<void()> onContentChanged;

 private:
  const Clock& clock_;
  const Dates& dates_;
  UsageStates states_;
  std::optional<std::string> note_;
  std::vector<UsageProvider> order_{kAllUsageProviders.begin(), kAllUsageProviders.end()};
};

}  // namespace nimbo
