// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "usage/usage_model.h"

namespace nimbo {

/// An instant such as "2026-11-21T14:30:00Z" or "2026-11-21T14:30:00.25+01:00" (the zone's colon may be
/// missing); absent for anything else.
[[nodiscard]] std::optional<UsageTime> parseIso8601(std::string_view text);

}  // namespace nimbo
