// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "platform/wording.h"
#include "settings/usage_provider.h"

/// What the user is told about a reading that failed, word for word, but for the sentences of Wording.
namespace nimbo::usage_messages {

// Signing in.
inline constexpr char kClaudeHasNoCredentials[] = "Claude usage is read through Claude Code or Claude Desktop.";
inline constexpr char kNoCodexCredentials[] =
    "No Codex auth.json found. Sign in with Codex CLI using file credential storage.";
inline constexpr char kClaudeCodeSignInExpired[] = "Sign-in expired. Open Claude Code to renew it, then refresh.";
[[nodiscard]] inline std::string signInUnreadable(UsageProvider provider) {
  return fmt::format("Sign-in data is unreadable. Sign in again in {} first.", displayName(provider));
}
[[nodiscard]] inline std::string noSubscriptionSignIn(UsageProvider provider) {
  return fmt::format("No subscription sign-in found. Sign in with {} first.", displayName(provider));
}

// The answer of a web service.
inline constexpr char kNoHttpResponse[] = "No response from the provider.";
inline constexpr char kUnreadableUsageData[] = "The provider returned unreadable usage data.";
/// Of a body that is not JSON at all.
inline constexpr char kNotJson[] = "The data couldn’t be read because it isn’t in the correct format.";
inline constexpr char kNoSupportedLimits[] = "No supported usage limits returned for this account.";
inline constexpr char kSignInCannotReadUsage[] =
    "This sign-in cannot read usage. Check your subscription and sign-in permissions.";
inline constexpr char kProviderUnreachable[] = "Couldn’t reach the provider. Check your connection and refresh.";
[[nodiscard]] inline std::string signInExpired(UsageProvider provider) {
  return fmt::format("Sign-in expired. Open {} to sign in again, then refresh.", displayName(provider));
}
/// `time` is the local time of day, without a date.
[[nodiscard]] inline std::string rateLimitReached(std::string_view time) {
  return fmt::format("Provider rate limit reached. Retry at {}. Refresh cannot shorten this wait.", time);
}
[[nodiscard]] inline std::string serviceUnavailable(int status) {
  return fmt::format("Usage service unavailable (HTTP {}). Retrying later.", status);
}

// The command-line tool.
inline constexpr char kClaudeCodeUnavailable[] = "Claude Code usage is unavailable.";
inline constexpr char kClaudeCodeNotInstalled[] = "Install Claude Code and sign in to read usage automatically.";
inline constexpr char kClaudeCodeNotStarted[] = "Couldn’t start Claude Code usage reader.";
inline constexpr char kClaudeWorkspaceNotEmpty[] =
    "Claude usage workspace is not empty. Remove Nimbo’s ClaudeUsage cache folder and refresh.";
inline constexpr char kClaudeCodeScreenUnsupported[] =
    "Claude Code returned an unsupported usage screen. Update Claude Code and refresh.";
inline constexpr char kClaudeCodeGaveNoUsage[] =
    "Claude Code couldn’t return usage. Run claude, sign in and check /usage, then refresh.";

// A usage screen, whichever program shows it.
inline constexpr char kNoReadableClaudeLimits[] =
    "No readable Claude limits. Sign in with Claude Code and check /usage, then refresh.";

// The desktop application.
[[nodiscard]] inline std::string desktopNeedsAccessibility(const Wording& wording) {
  return fmt::format("Desktop fallback needs {}. Enable it in Nimbo Settings → AI Usage.", wording.accessibility);
}
inline constexpr char kDesktopNotRunning[] = "Desktop fallback: open Claude → Settings → Usage, then refresh.";
inline constexpr char kDesktopUsageNotShown[] = "Desktop fallback: leave Claude → Settings → Usage open, then refresh.";
inline constexpr char kDesktopUnavailable[] = "Open Claude → Settings → Usage, then refresh.";

}  // namespace nimbo::usage_messages
