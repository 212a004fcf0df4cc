// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/updater.h"

namespace nimbo {

/// The windows of an updater without pixels: a test reads the notice and presses its buttons.
class FakeUpdateWindows final : public UpdateWindows {
 public:
  void show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) override {
    notices.push_back(notice);
    answered_ = std::move(answered);
    up_ = true;
  }
  void dismiss() override {
    up_ = false;
    answered_ = nullptr;
  }

  void found(const std::string& title, const std::string& text) override { updatesFound.emplace_back(title, text); }

  /// Whether there was such a button to press.
  bool press(const std::string& title) {
    if (!up_) return false;
    const auto& buttons = notices.back().buttons;
    const auto found = std::ranges::find(buttons, title);
    if (found == buttons.end()) return false;
    up_ = false;
    const auto answered = std::exchange(answered_, nullptr);
    if (answered) answered(static_cast<std::size_t>(found - buttons.begin()));
    return true;
  }

  /// What is on the screen; empty when nothing is.
  [[nodiscard]] std::string title() const { return up_ ? notices.back().title : std::string(); }
  [[nodiscard]] std::string text() const { return up_ ? notices.back().text : std::string(); }

  std::vector<UpdateNotice> notices;                              ///< all ever shown
  std::vector<std::pair<std::string, std::string>> updatesFound;  ///< titles and texts

 private:
  std::function<void(std::size_t button)> answered_;
  bool up_ = false;
};

}  // namespace nimbo
