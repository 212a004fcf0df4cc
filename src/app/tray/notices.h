// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "platform/status_bar.h"
#include "platform/workspace.h"

namespace nimbo {

/// Tells the user what happened while no window shows it: by a notification of the desktop and, until the next thing
/// that the user does, first in the items' tooltips. Main thread only.
class Notices {
 public:
  /// `changed` is called when tooltips are others. `workspace` outlives it.
  Notices(Workspace& workspace, std::function<void()> changed);

  void tell(const std::string& title, const std::string& text);
  /// The user has done something.
  void clear();
  [[nodiscard]] StatusItemContent withLatest(StatusItemContent content) const;

 private:
  Workspace& workspace_;
  std::function<void()> changed_;
  std::string latest_;
};

}  // namespace nimbo
