// SPDX-License-Identifier: MIT
#include "update/scheduled_updater.h"

#include <utility>

namespace nimbo {

ScheduledUpdater::ScheduledUpdater(const UpdateSchedule::Services& services, UpdateWindows& windows,
                                   UpdateSessionMaker make)
    : windows_(windows), make_(std::move(make)), schedule_(services, [this] { checkIsDue(); }) {}

bool ScheduledUpdater::canCheckForUpdates() const { return session_ == nullptr || session_->silent(); }

void ScheduledUpdater::checkForUpdates() {
  if (!canCheckForUpdates()) return;
  session_.reset();
  begin(UpdateRequest::user);
  // What the maker itself would have said cannot be said without it.
  if (session_ == nullptr) {
    windows_.show({"Couldn’t check for updates", "A part of Nimbo is missing. Install it again.", {"OK"}}, {});
  }
}

void ScheduledUpdater::checkIsDue() {
  if (session_ == nullptr) begin(UpdateRequest::automatic);
}

void ScheduledUpdater::begin(UpdateRequest request) {
  schedule_.checkBegins();
  session_ = make_(request, [this] { session_.reset(); });
}

}  // namespace nimbo
