// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

#include "ui/user_interface.h"

namespace nimbo {

/// Room for one alert, which is gone once it is answered. Main thread only.
class Question {
 public:
  /// `windows` outlives it.
  explicit Question(UserInterface& windows) : windows_(windows) {}

  /// Takes the place of one that is still there, which stays unanswered.
  void ask(const AlertContent& content, AlertAnswer answered) {
    alert_ = windows_.showAlert(content, [this, answered = std::move(answered)](std::optional<std::size_t> button) {
      const auto answer = answered;  // goes with the alert
      alert_.reset();
      answer(button);
    });
  }
  /// Null while nothing is asked.
  [[nodiscard]] Alert* alert() const { return alert_.get(); }
  void dismiss() { alert_.reset(); }

 private:
  UserInterface& windows_;
  std::unique_ptr<Alert> alert_;
};

}  // namespace nimbo
