// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/result.h"

namespace nimbo {

enum class LoginItemStatus {
  notRegistered,
  enabled,           ///< the program starts with the next log-in
  requiresApproval,  ///< registered, but the user has to allow it in the system's own settings
};

struct LoginItemError {
  std::string description;  ///< the system's own words
};

/// Starts the program at log-in. Main thread only.
class LoginItem {
 public:
  virtual ~LoginItem() = default;

  /// Asked anew each time, since other programs change it, too.
  [[nodiscard]] virtual LoginItemStatus status() const = 0;
  [[nodiscard]] virtual Result<void, LoginItemError> registerItem() = 0;
  [[nodiscard]] virtual Result<void, LoginItemError> unregisterItem() = 0;
  /// Opens the page of the system's settings where the user allows it.
  virtual void openSystemSettings() = 0;
};

}  // namespace nimbo
