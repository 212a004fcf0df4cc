// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <system_error>

#include "platform/updater.h"
#include "update/feed/update_choice.h"

namespace nimbo::update_notices {

// What the user is told at each step. The last button is the one that ends it. `version` and `installed`
// are for people, such as "1.2".

[[nodiscard]] UpdateNotice checking();
[[nodiscard]] UpdateNotice available(const std::string& version, const std::string& installed);
[[nodiscard]] UpdateNotice downloading(const std::string& version);
[[nodiscard]] UpdateNotice ready(const std::string& version);

/// The check has found no update.
[[nodiscard]] UpdateNotice nothing(NoUpdate why, const std::string& installed);

// Something has gone wrong, for one of the reasons below or another.
[[nodiscard]] UpdateNotice failedCheck(const std::string& reason);
[[nodiscard]] UpdateNotice failedDownload(const std::string& version, const std::string& reason);

inline constexpr const char* kUnreachable =
    "The update server can’t be reached. Check the internet connection and try again.";
inline constexpr const char* kNoFeed = "The update server’s answer isn’t a list of updates.";
inline constexpr const char* kNoPackage = "The update server didn’t send it. Try again later.";
inline constexpr const char* kWrongPackage = "The downloaded update was damaged or isn’t genuine. Nothing was changed.";
[[nodiscard]] std::string notSaved(std::error_code why);

}  // namespace nimbo::update_notices
