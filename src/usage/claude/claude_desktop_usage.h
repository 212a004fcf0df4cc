// SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <string>
#include <string_view>

#include "platform/accessibility.h"
#include "platform/clock.h"
#include "platform/wording.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Reads Claude's limits off the usage page of the desktop application's settings, which the user has
/// left open. Blocks, so on a background thread; all services outlive it.
class ClaudeDesktopUsage {
 public:
  ClaudeDesktopUsage(Accessibility& accessibility, const Clock& clock, const Wording& wording)
      : accessibility_(accessibility), clock_(clock), wording_(wording) {}

  /// `localZone` as in `parseResetText`. Once a stop is asked for it ends with the call that runs.
  [[nodiscard]] UsageOutcome read(std::string_view localZone, const std::stop_token& stop = {}) const;

 private:
  Accessibility& accessibility_;
  const Clock& clock_;
  const Wording& wording_;
};

/// The texts that a window shows, from top to bottom, one a line; a figure in several elements is one. Looks at 1500
/// elements at the most, 34 levels deep, for two seconds; texts of 300 characters and more are prose and left out.
/// Blocks.
[[nodiscard]] std::string windowText(AccessibleElement& window, const Clock& clock, const std::stop_token& stop = {});

}  // namespace nimbo
