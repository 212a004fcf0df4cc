// SPDX-License-Identifier: MIT
#pragma once

#include <cctz/time_zone.h>

#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

/// The zone of an identifier of the system's database ("Europe/Berlin", "UTC") that a stranger wrote;
/// absent when there is none of that name. Any thread.
[[nodiscard]] std::optional<cctz::time_zone> namedTimeZone(std::string_view identifier);

/// The same for a name that can be trusted, which may also be the path of a zone file.
[[nodiscard]] std::optional<cctz::time_zone> trustedTimeZone(std::string_view name);

}  // namespace nimbo
