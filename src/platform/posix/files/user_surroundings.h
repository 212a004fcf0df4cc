// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/platform_services.h"

namespace nimbo {

using Environment = std::map<std::string, std::string>;

/// From the C library's `environ`, which not every system declares.
[[nodiscard]] Environment environmentOf(char** entries);

/// Empty for one that is not set.
[[nodiscard]] std::string variable(const Environment& environment, const std::string& name);

/// The home folder that the user database names for this process; "/" when it names none.
[[nodiscard]] std::filesystem::path accountHome();

/// The user's time zone as a name that a database of zones understands: an identifier such as
/// "Europe/Berlin" or the absolute path of a zone file. `tz` is the TZ variable, which counts when it is
/// set; otherwise the link `localtime` (/etc/localtime) does, as it stands at that moment. A TZ that
/// spells out its own rules ("CET-1CEST") is returned as it is and is in no database.
[[nodiscard]] std::string localTimeZoneName(const std::optional<std::string>& tz,
                                            const std::filesystem::path& localtime);

/// All but the folder for caches, which is each system's own.
[[nodiscard]] UserSurroundings userSurroundings(const Environment& environment, std::filesystem::path caches);

}  // namespace nimbo
