// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

#include "platform/linux/files/file_stamp.h"

namespace nimbo {

/// The JSON file of one preference domain, `<folder>/<domain>.json`, as it was at the last look: its user
/// may edit it at any time. One thread at a time; a copy may go to another.
class JsonDomainFile {
 public:
  enum class State {
    missing,       ///< no such file: an empty domain
    good,          ///< holds a JSON object
    malformed,     ///< its text is no JSON object that we read; kept aside when written over
    inaccessible,  ///< cannot be opened or is no file; left alone
  };

  JsonDomainFile(const std::filesystem::path& folder, std::string_view domain);

  /// Looks at the file, and reads it when it has changed.
  State refresh();

  /// The object in the file, or the one that was there when it was last readable.
  [[nodiscard]] const nlohmann::json& values() const { return *values_; }

  /// After a `refresh`: writes the whole file unless it already says so; a malformed one is first renamed
  /// to a dated name beside it. False when nothing could be written, or somebody else has written since.
  [[nodiscard]] bool write(const nlohmann::json& values);

  /// Writes these members into the file as it is now, so that what others wrote into it stays.
  [[nodiscard]] bool update(const nlohmann::json& changes);

  void remove();

 private:
  [[nodiscard]] bool wasEdited() const;  ///< since the last look

  std::filesystem::path path_;
  std::optional<FileStamp> seen_;  // at the last look; absent for no file
  State state_ = State::missing;
  std::optional<FileStamp> stamp_;  // of the contents that were read last; absent when they must be read again
  std::shared_ptr<const nlohmann::json> values_;
};

}  // namespace nimbo
