// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "app/windows/question.h"
#include "awake/awake_manager.h"
#include "platform/main_loop.h"
#include "platform/wording.h"

namespace nimbo {

/// Ends the program because the user wants it; during a Keep Awake session only after asking. Main thread
/// only.
class QuitQuestion {
 public:
  /// All outlive it. `willShow` makes room on the screen.
  QuitQuestion(UserInterface& windows, MainLoop& loop, const AwakeManager& awake, const Wording& wording,
               std::function<void()> willShow);

  void quit();
  /// To be told of every change of the session. One that ends while its user is asked leaves nothing to ask: they
  /// wanted to quit, and nothing is lost by it any more.
  void sessionChanged();

 private:
  MainLoop& loop_;
  const AwakeManager& awake_;
  const Wording& wording_;
  std::function<void()> willShow_;
  Question question_;
};

}  // namespace nimbo
