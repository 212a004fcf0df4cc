// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/result.h"
#include "platform/assertion_client.h"
#include "platform/linux/bus/bounded_bus.h"
#include "platform/linux/files/unique_fd.h"

namespace nimbo {

/// Takes a blocking lock of systemd-logind (or elogind) on `what`: "sleep" or "idle". It is held
/// until the last copy of the descriptor is closed, also when logind starts anew.
[[nodiscard]] Result<UniqueFd, PowerError> takeLogindLock(const std::string& systemAddress, const char* what,
                                                          const std::string& reason, Deadline deadline);

}  // namespace nimbo
