// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "platform/user_defaults.h"

namespace nimbo {

/// The identity the program must run under for its settings to be migrated, and its settings domain.
inline constexpr std::string_view kCurrentIdentity = "com.quellwerk.Nimbo";
inline constexpr std::string_view kPreviousIdentity = "com.quellwerk.Velarin";

/// Copies the preferences of the previous identity that the current domain does not hold yet, and marks
/// the current domain so that this happens once. The previous domain is only read.
void migratePreviousIdentity(UserDefaultsDomains& domains);

}  // namespace nimbo
