// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

#include "ui/user_interface.h"

namespace nimbo {

/// An alert without pixels: a test reads it and answers it, also after the program has let go of it.
class FakeAlert {
 public:
  FakeAlert(AlertContent content, AlertAnswer answered)
      : content_(std::move(content)), answered_(std::move(answered)) {}

  /// What the program holds of `alert`.
  [[nodiscard]] static std::unique_ptr<Alert> show(std::shared_ptr<FakeAlert> alert) {
    return std::make_unique<Handle>(std::move(alert));
  }

  /// Presses the button, as long as the alert is up and unanswered; whether anybody heard it.
  bool answer(std::size_t button) {
    if (!up_ || button >= content_.buttons.size()) return false;
    const auto answered = std::exchange(answered_, nullptr);
    if (answered) answered(button);
    return static_cast<bool>(answered);
  }
  /// The system could not show it.
  void fail() {
    if (const auto answered = std::exchange(answered_, nullptr)) answered(std::nullopt);
  }
  /// Escape and the window's close button.
  bool close() { return answer(content_.cancel); }

  [[nodiscard]] const AlertContent& content() const { return content_; }
  /// Until the program destroys it.
  [[nodiscard]] bool up() const { return up_; }
  /// How often it was brought to the front after it was shown.
  [[nodiscard]] int presents() const { return presents_; }

 private:
  class Handle final : public Alert {
   public:
    explicit Handle(std::shared_ptr<FakeAlert> alert) : alert_(std::move(alert)) {}
    ~Handle() override {
      alert_->up_ = false;
      alert_->answered_ = nullptr;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    void present() override { ++alert_->presents_; }

   private:
    std::shared_ptr<FakeAlert> alert_;
  };

  AlertContent content_;
  AlertAnswer answered_;
  bool up_ = true;
  int presents_ = 0;
};

}  // namespace nimbo
