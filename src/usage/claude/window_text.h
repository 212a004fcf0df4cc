// SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <string>

#include "platform/accessibility.h"
#include "platform/clock.h"

namespace nimbo {

/// The texts that a window shows, from top to bottom, one a line. Looks at 1500 elements at the most, 34
/// levels deep, for two seconds; texts of 300 characters and more are prose and left out. Blocks.
[[nodiscard]] std::string windowText(AccessibleElement& window, const Clock& clock, const std::stop_token& stop = {});

}  // namespace nimbo
