// SPDX-License-Identifier: MIT
#include "usage/codex/codex_credential_file.h"

#include <cstddef>
#include <new>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "usage/usage_messages.h"

// RapidJSON adds to the null pointer of a stack that is still empty before it compares with the end.
#ifdef __clang__
#pragma clang attribute push(__attribute__((no_sanitize("pointer-overflow"))), apply_to = function)
#endif
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#ifdef __clang__
#pragma clang attribute pop
#endif

namespace nimbo {
namespace {

// The real one has about 5 KiB.
constexpr std::size_t kMaximumBytes = 1U << 20;

// Texts are decoded where they stand, so that the library has no copy of its own, and nesting costs no
// stack. The parser's own check of the encoding reads on behind a text that ends inside a character.
constexpr unsigned kParsing = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag;

/// Throws, as all else here does; the library would go on with a null pointer.
struct Allocator : rapidjson::CrtAllocator {
  void* Malloc(std::size_t size) { return given(CrtAllocator::Malloc(size), size); }
  void* Realloc(void* before, std::size_t sizeBefore, std::size_t size) {
    return given(CrtAllocator::Realloc(before, sizeBefore, size), size);
  }

 private:
  static void* given(void* memory, std::size_t size) {
    if (memory == nullptr && size != 0) throw std::bad_alloc();
    return memory;
  }
};
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<Allocator>, Allocator>;
using Pointer = rapidjson::GenericPointer<Document::ValueType, Allocator>;

std::optional<std::string_view> textAt(const char* place, const Document& file) {
  const auto* const value = Pointer(place).Get(file);
  if (value == nullptr || !value->IsString()) return std::nullopt;
  return std::string_view(value->GetString(), value->GetStringLength());
}

// Compared as numbers of seconds, because a file may claim any instant.
bool isExpired(const Document& claudeFile, UsageTime now) {
  const auto* const milliseconds = Pointer("/claudeAiOauth/expiresAt").Get(claudeFile);
  if (milliseconds == nullptr || !milliseconds->IsNumber()) return false;
  const std::chrono::duration<double> sinceEpoch = now.time_since_epoch();
  return milliseconds->GetDouble() / 1000 <= sinceEpoch.count();
}

}  // namespace

std::filesystem::path codexCredentialFile(const std::string& codexHome, const std::filesystem::path& home) {
  const auto folder = codexHome.empty() ? home / ".codex" : std::filesystem::path(codexHome);
  return folder / "auth.json";
}

UsageCredentialReader::Reader codexCredentialReader(std::filesystem::path file, const SecretFiles& files,
                                                    const Clock& clock) {
  return [file = std::move(file), &files, &clock](UsageProvider provider,
                                                  bool /*allowPrompt*/) -> UsageCredentialReader::Outcome {
    if (provider != UsageProvider::codex) return tl::unexpected(UsageError{usage_messages::kClaudeHasNoCredentials});
    const auto now = clock.now();  // a file that hangs may outlast the clock
    auto bytes = files.read(file, kMaximumBytes);
    if (!bytes) return tl::unexpected(UsageError{usage_messages::kNoCodexCredentials});
    return decodeCredentials(std::move(*bytes), provider, now);
  };
}

UsageCredentialReader::Outcome decodeCredentials(Secret bytes, UsageProvider provider, UsageTime now) {
  const bool isClaude = provider == UsageProvider::claude;
  Document file;
  if (!isUtf8(bytes.view()) || file.ParseInsitu<kParsing>(bytes.data()).HasParseError() || !file.IsObject()) {
    return tl::unexpected(UsageError{usage_messages::signInUnreadable(provider)});
  }
  const auto token = textAt(isClaude ? "/claudeAiOauth/accessToken" : "/tokens/access_token", file);
  if (!token || token->empty()) return tl::unexpected(UsageError{usage_messages::noSubscriptionSignIn(provider)});
  if (isClaude && isExpired(file, now)) {
    return tl::unexpected(UsageError{usage_messages::kClaudeCodeSignInExpired});
  }
  const auto account = isClaude ? std::nullopt : textAt("/tokens/account_id", file);
  return UsageCredentials{Secret(*token), std::optional<std::string>(account)};
}

}  // namespace nimbo
