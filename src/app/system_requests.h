// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "app/windows/toolkit.h"
#include "base/lifetime.h"
#include "platform/platform_services.h"

namespace nimbo {

/// What the settings window asks of the system. A refusal is told in a notice. Main thread only.
class SystemRequests {
 public:
  /// Both outlive it, and `platform` also what it has been asked for.
  SystemRequests(PlatformServices& platform, Toolkit& toolkit) : platform_(platform), toolkit_(toolkit) {}

  /// Starts the program at log-in, or no longer.
  void toggleLogin();
  /// Opens Claude Desktop so that its usage page can be read.
  void openClaudeDesktop();

 private:
  void tell(const std::string& title, const std::string& text);

  PlatformServices& platform_;
  Toolkit& toolkit_;
  bool openingClaudeDesktop_ = false;
  std::unique_ptr<Alert> notice_;
  Lifetime lifetime_;
};

}  // namespace nimbo
