// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/status_bar.h"

namespace nimbo {

/// What the status menu can do. An entry whose action is empty is shown disabled.
struct StatusMenuActions {
  std::function<void()> quickToggleAwake;
  std::function<void()> openSettings;
  std::function<void()> checkForUpdates;
  std::function<void()> quit;
};

enum class AwakeSession { off, running };

[[nodiscard]] StatusMenu makeStatusMenu(const StatusMenuActions& actions, AwakeSession session);

}  // namespace nimbo
