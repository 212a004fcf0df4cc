// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nimbo {

/// The user's time zone as a name that a database of zones understands: an identifier such as
/// "Europe/Berlin" or the absolute path of a zone file. `tz` is the TZ variable, which counts when it is
/// set; otherwise the link `localtime` (/etc/localtime) does, as it stands at that moment. A TZ that
/// spells out its own rules ("CET-1CEST") is returned as it is and is in no database.
[[nodiscard]] std::string localTimeZoneName(const std::optional<std::string>& tz,
                                            const std::filesystem::path& localtime);

}  // namespace nimbo
