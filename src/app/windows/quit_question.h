// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "app/windows/toolkit.h"
#include "awake/awake_manager.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Ends the program because the user wants it; during a Keep Awake session only after asking. Main thread
/// only.
class QuitQuestion {
 public:
  /// All outlive it. `willShow` makes room on the screen.
  QuitQuestion(Toolkit& toolkit, MainLoop& loop, const AwakeManager& awake, std::function<void()> willShow);

  void quit();

 private:
  Toolkit& toolkit_;
  MainLoop& loop_;
  const AwakeManager& awake_;
  std::function<void()> willShow_;
  std::unique_ptr<Alert> alert_;
};

}  // namespace nimbo
