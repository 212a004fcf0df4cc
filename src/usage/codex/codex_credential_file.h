// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "platform/clock.h"
#include "platform/user_files.h"
#include "usage/codex/usage_credential_reader.h"

namespace nimbo {

/// Where Codex keeps its sign-in: below the folder that the environment names in CODEX_HOME, or
/// `home`/.codex when it names none.
[[nodiscard]] std::filesystem::path codexCredentialFile(const std::string& codexHome,
                                                        const std::filesystem::path& home);

/// Reads the sign-in that Codex keeps in `file`, anew each time; for Claude it always fails. `files` and
/// `clock` outlive every read.
[[nodiscard]] UsageCredentialReader::Reader codexCredentialReader(std::filesystem::path file, const SecretFiles& files,
                                                                  const Clock& clock);

/// The sign-in that a provider's own program keeps in its credential file, whose bytes these are.
/// Nothing of them appears in an error or stays in memory but the result.
[[nodiscard]] UsageCredentialReader::Outcome decodeCredentials(Secret bytes, UsageProvider provider, UsageTime now);

}  // namespace nimbo
