// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "platform/bundle_info.h"
#include "platform/updater.h"

namespace nimbo {

/// Runs an updater only when the installed application names a signed feed, so that development builds
/// are without, and says so when they are asked. Main thread only.
class UpdateChecker {
 public:
  /// Null when this system cannot have one.
  using UpdaterMaker = std::function<std::unique_ptr<Updater>(const UpdateFeed& feed)>;

  /// `bundle` and `windows` outlive it.
  UpdateChecker(const BundleInfo& bundle, UpdaterMaker makeUpdater, UpdateWindows& windows);

  /// Makes the updater, once; does nothing without a feed and a key.
  void start();
  void checkForUpdates();

  /// False without an updater.
  [[nodiscard]] bool automaticallyChecksForUpdates() const;
  /// Does nothing without an updater.
  void toggleAutomaticChecks();

 private:
  const BundleInfo& bundle_;
  UpdaterMaker makeUpdater_;
  UpdateWindows& windows_;
  std::unique_ptr<Updater> controller_;
};

}  // namespace nimbo
