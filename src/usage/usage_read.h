// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/result.h"
#include "base/subscription.h"
#include "usage/usage_model.h"

namespace nimbo {

struct UsageReadFailure {
  std::string message;  ///< for the user
  /// The provider answered that it must not be asked before.
  std::optional<UsageTime> retryNotBefore{};
  bool operator==(const UsageReadFailure&) const = default;
};

using UsageOutcome = Result<UsageSnapshot, UsageReadFailure>;

enum class UsageRequest {
  automatic,
  manual,  ///< the user waits for it and may be asked by the system
};

/// Starts one read of a provider. `done` is called once, later, from the main loop; dropping the
/// subscription cancels the read and silences `done`. Main thread only.
using UsageRead = std::function<Subscription(UsageRequest request, std::function<void(UsageOutcome)> done)>;

}  // namespace nimbo
