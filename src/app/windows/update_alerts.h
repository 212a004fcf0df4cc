// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "app/windows/question.h"
#include "platform/updater.h"

namespace nimbo {

/// The notices of the updater as alerts. Escape and closing press the last button, which ends what the
/// notice is about; so does a display that is not there. Main thread only.
class UpdateAlerts final : public UpdateWindows {
 public:
  /// `windows` outlives it. `willShow` makes room on the screen.
  UpdateAlerts(UserInterface& windows, std::function<void()> willShow);

  void show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) override;
  void dismiss() override { question_.dismiss(); }

 private:
  std::function<void()> willShow_;
  Question question_;
};

}  // namespace nimbo
