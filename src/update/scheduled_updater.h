// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>

#include "base/subscription.h"
#include "platform/clock.h"
#include "platform/main_loop.h"
#include "platform/update_session.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// Looks for updates when the user asks and, for as long as the user wants that, once a day: begins one
/// session at a time, and keeps the wish and the time of the last check among the settings. Main thread only.
class ScheduledUpdater final : public Updater {
 public:
  /// They outlive it.
  struct Services {
    UserDefaults& defaults;
    const Clock& clock;
    MainLoop& loop;
    UpdateWindows& windows;
  };

  /// `make` is not asked before the first check.
  ScheduledUpdater(const Services& services, UpdateSessionMaker make);

  /// A check that nobody sees gives way to one that the user asked for.
  [[nodiscard]] bool canCheckForUpdates() const override { return session_ == nullptr || session_->silent(); }
  void checkForUpdates() override;

  /// Off until the user has switched it on.
  [[nodiscard]] bool automaticallyChecksForUpdates() const override;
  void setAutomaticallyChecksForUpdates(bool on) override;

 private:
  using Time = std::chrono::system_clock::time_point;

  void begin(UpdateRequest request);
  [[nodiscard]] Time nextCheck(Time now) const;
  void scheduleNext();
  void scheduleAt(Time when);
  void checkIsDue();

  Services services_;
  UpdateSessionMaker make_;
  std::unique_ptr<UpdateSession> session_;
  Subscription timer_;
};

}  // namespace nimbo
