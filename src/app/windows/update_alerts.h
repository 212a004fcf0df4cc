// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/windows/toolkit.h"
#include "base/lifetime.h"
#include "platform/main_loop.h"
#include "platform/updater.h"

namespace nimbo {

/// The notices of the updater as alerts. Escape and closing press the last button, which ends what the
/// notice is about; so does a display that is not there. Main thread only.
class UpdateAlerts final : public UpdateWindows {
 public:
  /// `toolkit` and `loop` outlive it. `willShow` makes room on the screen.
  UpdateAlerts(Toolkit& toolkit, MainLoop& loop, std::function<void()> willShow);

  void show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) override;
  void dismiss() override;

 private:
  Toolkit& toolkit_;
  MainLoop& loop_;
  std::function<void()> willShow_;
  std::unique_ptr<Alert> alert_;
  std::optional<Lifetime> unseen_;  ///< of a notice that could not be shown
};

}  // namespace nimbo
