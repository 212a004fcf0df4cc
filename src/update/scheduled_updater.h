// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform/update_session.h"
#include "update/update_schedule.h"

namespace nimbo {

/// Decides when a session begins, one at a time. What looks and downloads comes from the maker, which is
/// not asked before the first check.
class ScheduledUpdater final : public Updater {
 public:
  /// `windows` outlives it.
  ScheduledUpdater(const UpdateSchedule::Services& services, UpdateWindows& windows, UpdateSessionMaker make);

  /// A check that nobody sees gives way to one that the user asked for.
  [[nodiscard]] bool canCheckForUpdates() const override;
  void checkForUpdates() override;

  [[nodiscard]] bool automaticallyChecksForUpdates() const override { return schedule_.enabled(); }
  void setAutomaticallyChecksForUpdates(bool on) override { schedule_.setEnabled(on); }

 private:
  void checkIsDue();
  void begin(UpdateRequest request);

  UpdateWindows& windows_;
  UpdateSessionMaker make_;
  UpdateSchedule schedule_;
  std::unique_ptr<UpdateSession> session_;
};

}  // namespace nimbo
