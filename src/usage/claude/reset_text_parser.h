// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "usage/usage_model.h"

namespace nimbo {

/// When a limit resets, from a line such as "Resets 3:59pm (Europe/Berlin)", "Resets Nov 20 at 9:00am",
/// "Resets Jan 2, 2027, 9am", "Resets Mon 9:00am" or "Resets in 2h 14m"; absent when the line does not say so in a form
/// that is known, or names an unknown time zone. `localZone` counts where the line names none: an identifier such as
/// "Europe/Berlin", or the path of a zone file.
///
/// A time of day that a clock change skips is the moment of the change; one that it repeats is the first
/// of the two, or the second when only that is still to come and the line gives no date.
[[nodiscard]] std::optional<UsageTime> parseResetText(std::string_view line, UsageTime now, std::string_view localZone);

}  // namespace nimbo
