// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/subscription.h"
#include "settings/usage_provider.h"

namespace nimbo {

using UsageTime = std::chrono::system_clock::time_point;

/// One limit window of a subscription.
struct UsageWindow {
  std::string title;                    ///< "5-hour", "Weekly", …
  double usedPercent = 0;               ///< 0…100 of the window's allowance
  std::optional<UsageTime> resetsAt{};  ///< absent when the provider did not say
  bool operator==(const UsageWindow&) const = default;
};

/// One successful reading of one provider.
struct UsageSnapshot {
  std::vector<UsageWindow> windows;  ///< in the reader's order, never empty
  UsageTime fetchedAt{};
  std::optional<std::string> source{};  ///< where the reading came from; absent for the web
  bool operator==(const UsageSnapshot&) const = default;
};

/// What is shown of one provider.
struct UsageState {
  bool enabled = false;
  std::optional<UsageSnapshot> snapshot{};  ///< the last good one, kept across failures
  std::optional<std::string> message{};     ///< absent when the last refresh succeeded
  bool isRefreshing = false;
  std::optional<UsageTime> retryNotBefore{};  ///< while the message tells of a rate limit
  bool operator==(const UsageState&) const = default;
};

using UsageStates = std::map<UsageProvider, UsageState>;

/// When a reading that failed is worth another try.
enum class UsageRetry {
  usual,        ///< at the next that is due
  withNetwork,  ///< also as soon as the machine is connected
  late,         ///< nothing comes of it for a good while, unless the user does something
};

/// Why a reading failed.
struct UsageError {
  std::string message{};                      ///< for the user; empty when there is nothing to tell
  std::optional<UsageTime> retryNotBefore{};  ///< the provider answered that it must not be asked before
  UsageRetry retry = UsageRetry::usual;
  bool operator==(const UsageError&) const = default;
};

using UsageOutcome = Result<UsageSnapshot, UsageError>;

enum class UsageRequest {
  automatic,
  manual,  ///< the user waits for it and may be asked by the system
};

/// Starts one read of a provider. `done` is called once, later, from the main loop; dropping the
/// subscription cancels the read and silences `done`. Main thread only.
using UsageRead = std::function<Subscription(UsageRequest request, std::function<void(UsageOutcome)> done)>;

}  // namespace nimbo
