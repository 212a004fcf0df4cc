// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/login_item.h"

namespace nimbo {

/// A system that starts programs at log-in, may want the user's approval and may refuse.
class FakeLoginItem final : public LoginItem {
 public:
  [[nodiscard]] LoginItemStatus status() const override { return current; }

  [[nodiscard]] Result<void, LoginItemError> registerItem() override {
    ++timesRegistered;
    return change(needsApproval ? LoginItemStatus::requiresApproval : LoginItemStatus::enabled);
  }
  [[nodiscard]] Result<void, LoginItemError> unregisterItem() override {
    ++timesUnregistered;
    return change(LoginItemStatus::notRegistered);
  }
  void openSystemSettings() override { ++settingsOpened; }

  LoginItemStatus current = LoginItemStatus::notRegistered;
  bool needsApproval = false;
  std::optional<std::string> refusal;  ///< why every change fails
  int timesRegistered = 0;
  int timesUnregistered = 0;
  int settingsOpened = 0;

 private:
  Result<void, LoginItemError> change(LoginItemStatus next) {
    if (refusal) return tl::unexpected(LoginItemError{*refusal});
    current = next;
    return {};
  }
};

}  // namespace nimbo
