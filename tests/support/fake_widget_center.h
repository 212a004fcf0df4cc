// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/widget_center.h"

namespace nimbo {

/// The groups' folders in memory. Keeps what was written and records in which order all happened.
class FakeWidgetCenter final : public WidgetCenter {
 public:
  [[nodiscard]] std::optional<std::filesystem::path> container(const std::string& appGroup) const override {
    return givesContainers ? std::optional(std::filesystem::path("/groups") / appGroup) : std::nullopt;
  }

  [[nodiscard]] bool writeAtomically(const std::filesystem::path& file, std::string_view contents) const override {
    events.push_back("write " + file.string());
    if (failsToWrite) return false;
    files[file] = contents;
    return true;
  }

  void reloadTimelines(const std::string& kind) override { events.push_back("reload " + kind); }

  bool givesContainers = true;
  bool failsToWrite = false;
  mutable std::map<std::filesystem::path, std::string> files;
  mutable std::vector<std::string> events;  ///< "write FILE" for each attempt, "reload KIND"
};

}  // namespace nimbo
