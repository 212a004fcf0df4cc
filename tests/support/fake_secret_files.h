// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/user_files.h"

namespace nimbo {

/// Files in memory. What was asked for is recorded.
class FakeSecretFiles final : public SecretFiles {
 public:
  [[nodiscard]] Result<Secret, std::error_code> read(const std::filesystem::path& file,
                                                     std::size_t maximumBytes) const override {
    reads.push_back(file.string());
    const auto found = texts.find(file.string());
    if (found == texts.end()) return tl::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
    if (found->second.size() > maximumBytes) return tl::unexpected(std::make_error_code(std::errc::file_too_large));
    return Secret(found->second);
  }

  std::map<std::string, std::string> texts;  ///< by path
  mutable std::vector<std::string> reads;
};

}  // namespace nimbo
