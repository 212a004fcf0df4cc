// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "platform/linux/files/regular_file.h"

namespace nimbo {

/// The JSON file of one preference domain, `<folder>/<domain>.json`, which its user may edit at any time:
/// every call first looks whether it changed. Main thread only.
class JsonDomainFile {
 public:
  enum class State {
    missing,       ///< no such file: an empty domain
    good,          ///< holds a JSON object
    malformed,     ///< its text is no JSON object that we read; kept aside when written over
    inaccessible,  ///< cannot be opened or is no file; left alone
  };

  JsonDomainFile(const std::filesystem::path& folder, std::string_view domain);

  [[nodiscard]] State state();

  /// What the file holds, or held when it was last readable.
  [[nodiscard]] const nlohmann::json& values();

  /// Writes the whole file unless it already says so; a malformed one is first renamed to a dated name
  /// beside it. False when nothing could be written.
  [[nodiscard]] bool replace(const nlohmann::json& values);

  void remove();

 private:
  void refresh();

  std::filesystem::path path_;
  State state_ = State::missing;
  std::optional<FileStamp> stamp_;  // of the contents that were read last; absent when they must be read again
  nlohmann::json values_ = nlohmann::json::object();
};

}  // namespace nimbo
