// SPDX-License-Identifier: MIT
#include "usage/codex/codex_credential_file.h"

#include <cstddef>
#include <utility>

#include "usage/codex/credential_decoder.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

// The real one has about 5 KiB.
constexpr std::size_t kMaximumBytes = 1U << 20;

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

}  // namespace nimbo
