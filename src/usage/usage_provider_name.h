// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "settings/usage_provider.h"

namespace nimbo {

/// The name under which people know the service: "Codex" or "Claude".
[[nodiscard]] constexpr std::string_view displayName(UsageProvider provider) {
  return provider == UsageProvider::codex ? "Codex" : "Claude";
}

}  // namespace nimbo
