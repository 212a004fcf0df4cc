// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <system_error>

#include "platform/http_client.h"
#include "platform/updater.h"
#include "update/feed/update_choice.h"

namespace nimbo::update_notices {

// What the user is told at each step. The last button is the one that ends it.

[[nodiscard]] UpdateNotice checking();
/// `installed` and `version` are for people, such as "1.2".
[[nodiscard]] UpdateNotice available(const std::string& version, const std::string& installed);
[[nodiscard]] UpdateNotice downloading(const std::string& version);
[[nodiscard]] UpdateNotice ready(const std::string& version);

/// The check has found no update.
[[nodiscard]] UpdateNotice nothing(NoUpdate why, const std::string& installed);
/// The check has not come to an end: nobody answered, or something else than a feed.
[[nodiscard]] UpdateNotice unreachableFeed();
[[nodiscard]] UpdateNotice unreadableFeed();

[[nodiscard]] UpdateNotice unreachablePackage(const std::string& version);
[[nodiscard]] UpdateNotice missingPackage(const std::string& version);
[[nodiscard]] UpdateNotice wrongPackage(const std::string& version);
[[nodiscard]] UpdateNotice unsavedPackage(const std::string& version, std::error_code why);

}  // namespace nimbo::update_notices
