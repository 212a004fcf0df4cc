// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include "platform/platform_services.h"

namespace nimbo {

/// Runs an updater only when the installed application names a signed feed, so that development builds
/// are without, and says so when they are asked. Main thread only.
class UpdateChecker {
 public:
  /// Both outlive it.
  UpdateChecker(PlatformServices& platform, UpdateWindows& windows) : platform_(platform), windows_(windows) {}

  /// Makes the updater, once; does nothing without a feed and a key.
  void start();
  void checkForUpdates();

  /// Absent without an updater.
  [[nodiscard]] std::optional<bool> automaticallyChecksForUpdates() const;
  /// Does nothing without an updater.
  void toggleAutomaticChecks();

 private:
  [[nodiscard]] std::unique_ptr<Updater> makeUpdater(const UpdateFeed& feed);

  PlatformServices& platform_;
  UpdateWindows& windows_;
  std::unique_ptr<Updater> updater_;
};

}  // namespace nimbo
