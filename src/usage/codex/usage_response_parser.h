// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

/// The limits in the body of a usage service's answer.
[[nodiscard]] UsageOutcome parseUsageResponse(std::string_view body, UsageProvider provider, UsageTime now);

/// How long a service that limits its requests must be left alone. `header` is its Retry-After, of
/// which only a number of seconds counts; never less than ten minutes.
[[nodiscard]] std::chrono::seconds rateLimitWait(const std::optional<std::string>& header);

/// An instant such as "2026-11-21T14:30:00Z" or "2026-11-21T14:30:00.25+01:00" (the zone's colon may be
/// missing); absent for anything else.
[[nodiscard]] std::optional<UsageTime> parseIso8601(std::string_view text);

}  // namespace nimbo
