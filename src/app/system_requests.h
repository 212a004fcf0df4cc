// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/windows/question.h"
#include "base/lifetime.h"
#include "platform/platform_services.h"

namespace nimbo {

/// What the settings window asks of the system. A refusal is told in a notice. Main thread only.
class SystemRequests {
 public:
  /// Both outlive it, and `platform` also what it has been asked for.
  SystemRequests(PlatformServices& platform, UserInterface& windows) : platform_(platform), notice_(windows) {}

  /// Starts the program at log-in, or no longer.
  void toggleLogin();
  /// Opens Claude Desktop so that its usage page can be read.
  void openClaudeDesktop();

 private:
  void tell(const std::string& title, const std::string& text);

  PlatformServices& platform_;
  bool openingClaudeDesktop_ = false;
  Question notice_;
  Lifetime lifetime_;
};

}  // namespace nimbo
