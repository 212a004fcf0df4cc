// SPDX-License-Identifier: MIT
#include "app/update_checker.h"

#include <utility>

#include "update/https_url.h"

namespace nimbo {

UpdateChecker::UpdateChecker(const BundleInfo& bundle, UpdaterMaker makeUpdater, UpdateWindows& windows)
    : bundle_(bundle), makeUpdater_(std::move(makeUpdater)), windows_(windows) {}

void UpdateChecker::start() {
  if (controller_ || !bundle_.feedUrl || !isHttpsUrl(*bundle_.feedUrl) || !bundle_.publicKey) return;
  controller_ = makeUpdater_({*bundle_.feedUrl, *bundle_.publicKey});
}

void UpdateChecker::checkForUpdates() {
  start();
  if (!controller_) {
    windows_.show(
        {"Updates aren’t connected yet", "This development build has no signed update feed configured.", {"OK"}}, {});
  } else if (controller_->canCheckForUpdates()) {
    controller_->checkForUpdates();
  }
}

bool UpdateChecker::automaticallyChecksForUpdates() const {
  return controller_ && controller_->automaticallyChecksForUpdates();
}

void UpdateChecker::toggleAutomaticChecks() {
  if (controller_) controller_->setAutomaticallyChecksForUpdates(!controller_->automaticallyChecksForUpdates());
}

}  // namespace nimbo
