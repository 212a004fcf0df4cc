// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace nimbo {

/// The "file" URI (RFC 8089) of an absolute path, with every byte escaped that has a meaning in URIs.
[[nodiscard]] std::string fileUri(const std::filesystem::path& file);

}  // namespace nimbo
