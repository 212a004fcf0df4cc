// SPDX-License-Identifier: MIT
#include "settings/usage_provider.h"

namespace nimbo {

std::string_view rawValue(UsageProvider provider) {
  switch (provider) {
    case UsageProvider::codex:
      return "codex";
    case UsageProvider::claude:
      return "claude";
  }
  return {};
}

std::optional<UsageProvider> usageProvider(std::string_view raw) {
  for (const UsageProvider provider : kAllUsageProviders) {
    if (rawValue(provider) == raw) return provider;
  }
  return std::nullopt;
}

}  // namespace nimbo
