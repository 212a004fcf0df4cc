// SPDX-License-Identifier: MIT
#include "app/update_checker.h"

#include <utility>

#include "update/https_url.h"
#include "update/scheduled_updater.h"

namespace nimbo {

void UpdateChecker::start() {
  const auto& bundle = platform_.bundleInfo();
  if (updater_ || !bundle.feedUrl || !isHttpsUrl(*bundle.feedUrl) || !bundle.publicKey) return;
  updater_ = makeUpdater({*bundle.feedUrl, *bundle.publicKey});
}

std::unique_ptr<Updater> UpdateChecker::makeUpdater(const UpdateFeed& feed) {
  auto source = platform_.updateSource(feed, windows_);
  if (auto* const whole = std::get_if<std::unique_ptr<Updater>>(&source)) return std::move(*whole);
  auto& sessions = std::get<UpdateSessionMaker>(source);
  if (!sessions) return nullptr;
  const ScheduledUpdater::Services services{.defaults = platform_.userDefaults(),
                                            .clock = *platform_.readers().clock,
                                            .loop = platform_.mainLoop(),
                                            .windows = windows_};
  return std::make_unique<ScheduledUpdater>(services, std::move(sessions));
}

void UpdateChecker::checkForUpdates() {
  start();
  if (!updater_) {
    windows_.show(
        {"Updates aren’t connected yet", "This development build has no signed update feed configured.", {"OK"}}, {});
  } else if (updater_->canCheckForUpdates()) {
    updater_->checkForUpdates();
  }
}

std::optional<bool> UpdateChecker::automaticallyChecksForUpdates() const {
  return updater_ ? std::optional(updater_->automaticallyChecksForUpdates()) : std::nullopt;
}

void UpdateChecker::toggleAutomaticChecks() {
  if (updater_) updater_->setAutomaticallyChecksForUpdates(!updater_->automaticallyChecksForUpdates());
}

}  // namespace nimbo
