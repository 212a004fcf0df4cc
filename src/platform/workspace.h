// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "base/subscription.h"

namespace nimbo {

enum class Appearance { light, dark };

/// The desktop around the program. Main thread only.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// The last answer of the desktop; light until it has answered.
  [[nodiscard]] virtual Appearance appearance() const = 0;
  [[nodiscard]] virtual Subscription observeAppearance(std::function<void(Appearance)> changed) = 0;

  /// Whether the desktop has a program that shows all processes.
  [[nodiscard]] virtual bool hasSystemMonitor() const = 0;
  /// Starts it without waiting; false when there is none or it could not be started.
  [[nodiscard]] virtual bool openSystemMonitor() = 0;

  /// Hands a link to the program that the user opens such links with, without waiting.
  virtual void openLink(const std::string& url) = 0;
  /// Starts the application of that bundle identifier, or brings it to the front, without waiting.
  /// False when the system knows no such application.
  virtual bool openApplication(const std::string& bundleIdentifier) = 0;
  /// Shows a file in its folder, in the user's file manager, without waiting.
  virtual void revealFile(const std::filesystem::path& file) = 0;
  /// Tells the user something in the desktop's own way, without waiting. Lost where the desktop has none.
  virtual void notify(const std::string& title, const std::string& text) = 0;
};

}  // namespace nimbo
