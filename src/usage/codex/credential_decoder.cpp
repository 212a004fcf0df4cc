// SPDX-License-Identifier: MIT
#include "usage/codex/credential_decoder.h"

#include <optional>
#include <utility>

#include "base/utf8_text.h"
#include "base/wipe.h"
#include "usage/usage_messages.h"

// RapidJSON adds to the null pointer of a stack that is still empty before it compares with the end.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/document.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

namespace nimbo {
namespace {

using Object = rapidjson::Value;

// Where the texts stand they are decoded, so that there is no copy to wipe, and nesting costs no stack.
// The parser's own check of the encoding reads on behind a text that ends inside a character.
constexpr unsigned kParsing = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag;

const Object* member(const Object& object, const char* key) {
  if (!object.IsObject()) return nullptr;
  const auto found = object.FindMember(key);
  return found == object.MemberEnd() ? nullptr : &found->value;
}

std::optional<std::string> textMember(const Object& object, const char* key) {
  const Object* const value = member(object, key);
  if (value == nullptr || !value->IsString()) return std::nullopt;
  return std::string(value->GetString(), value->GetStringLength());
}

// Compared as numbers of seconds, because a file may claim any instant.
bool isExpired(const Object& signIn, UsageTime now) {
  const Object* const milliseconds = member(signIn, "expiresAt");
  if (milliseconds == nullptr || !milliseconds->IsNumber()) return false;
  const std::chrono::duration<double> sinceEpoch = now.time_since_epoch();
  return milliseconds->GetDouble() / 1000 <= sinceEpoch.count();
}

Result<UsageCredentials, UsageError> decode(std::string& text, UsageProvider provider, UsageTime now) {
  const bool isClaude = provider == UsageProvider::claude;
  rapidjson::Document file;
  if (!isUtf8(text) || file.ParseInsitu<kParsing>(text.data()).HasParseError() || !file.IsObject()) {
    return tl::unexpected(UsageError{usage_messages::signInUnreadable(provider)});
  }
  const Object* const signIn = member(file, isClaude ? "claudeAiOauth" : "tokens");
  auto token = signIn == nullptr ? std::nullopt : textMember(*signIn, isClaude ? "accessToken" : "access_token");
  if (!token || token->empty()) return tl::unexpected(UsageError{usage_messages::noSubscriptionSignIn(provider)});
  if (!isClaude) return UsageCredentials{std::move(*token), textMember(*signIn, "account_id")};
  if (isExpired(*signIn, now)) {
    wipe(*token);
    return tl::unexpected(UsageError{usage_messages::kClaudeCodeSignInExpired});
  }
  return UsageCredentials{std::move(*token), std::nullopt};
}

}  // namespace

Result<UsageCredentials, UsageError> decodeCredentials(std::string bytes, UsageProvider provider, UsageTime now) {
  auto credentials = decode(bytes, provider, now);
  wipe(bytes);
  return credentials;
}

}  // namespace nimbo
