// SPDX-License-Identifier: MIT
#include "usage/usage_messages.h"

#include <fmt/format.h>

#include "usage/usage_status.h"

namespace nimbo::usage_messages {

std::string signInUnreadable(UsageProvider provider) {
  return fmt::format("Sign-in data is unreadable. Sign in again in {} first.", displayName(provider));
}

std::string noSubscriptionSignIn(UsageProvider provider) {
  return fmt::format("No subscription sign-in found. Sign in with {} first.", displayName(provider));
}

std::string signInExpired(UsageProvider provider) {
  return fmt::format("Sign-in expired. Open {} to sign in again, then refresh.", displayName(provider));
}

std::string rateLimitReached(std::string_view time) {
  return fmt::format("Provider rate limit reached. Retry at {}. Refresh cannot shorten this wait.", time);
}

std::string serviceUnavailable(int status) {
  return fmt::format("Usage service unavailable (HTTP {}). Retrying later.", status);
}

}  // namespace nimbo::usage_messages
