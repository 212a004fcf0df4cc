// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "app/windows/question.h"
#include "platform/updater.h"

namespace nimbo {

/// The notices of the updater as alerts. Escape and closing press the last button, which ends what the
/// notice is about; so does a display that is not there. Main thread only.
class UpdateAlerts final : public UpdateWindows {
 public:
  struct Callbacks {
    std::function<void()> willShow;  ///< makes room on the screen
    std::function<void(const std::string& title, const std::string& text)> found;
  };

  /// `windows` outlives it.
  UpdateAlerts(UserInterface& windows, Callbacks callbacks);

  void show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) override;
  void dismiss() override { question_.dismiss(); }
  void found(const std::string& title, const std::string& text) override { callbacks_.found(title, text); }

 private:
  Callbacks callbacks_;
  Question question_;
};

}  // namespace nimbo
