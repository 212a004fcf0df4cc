// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/result.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

/// The sign-in that a provider's own program keeps in its credential file, whose bytes these are. They
/// are wiped, and nothing of them appears in an error or stays in memory but the result.
[[nodiscard]] Result<UsageCredentials, UsageError> decodeCredentials(std::string bytes, UsageProvider provider,
                                                                     UsageTime now);

}  // namespace nimbo
