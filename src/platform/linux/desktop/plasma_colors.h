// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/observer_list.h"
#include "platform/main_loop.h"
#include "platform/posix/files/unique_fd.h"
#include "platform/workspace.h"

namespace nimbo {

/// Whether Plasma's colours are dark, from the files that say so. Each question reads them anew. Main thread only.
class PlasmaColors {
 public:
  struct Folders {
    std::filesystem::path config;             ///< XDG_CONFIG_HOME
    std::vector<std::filesystem::path> data;  ///< XDG_DATA_HOME and XDG_DATA_DIRS, in their order
  };

  /// `loop` outlives it.
  PlasmaColors(MainLoop& loop, Folders folders) : loop_(loop), folders_(std::move(folders)) {}
  PlasmaColors(const PlasmaColors&) = delete;
  PlasmaColors& operator=(const PlasmaColors&) = delete;

  /// Of windows, by the colour scheme. Absent when no file tells.
  [[nodiscard]] std::optional<Appearance> ofWindows() const;
  /// Of panels, by the Plasma style, and of windows where the style has no colours of its own.
  [[nodiscard]] std::optional<Appearance> ofPanels() const;

  /// Calls `changed` when one of the user's files may say something else.
  [[nodiscard]] Subscription observe(std::function<void()> changed);

 private:
  [[nodiscard]] std::optional<std::string> setting(std::string_view file, std::string_view group,
                                                   std::string_view key) const;
  [[nodiscard]] std::optional<Appearance> ofColors(const std::filesystem::path& fileInData) const;

  void startWatching();
  void filesChanged();

  MainLoop& loop_;
  const Folders folders_;
  ObserverList<> observers_;
  UniqueFd inotify_;  // empty until somebody observes
  Subscription readable_;
};

}  // namespace nimbo
