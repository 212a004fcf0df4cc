// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "app/windows/user_interface_maker.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"

namespace nimbo {

/// The toolkit, loaded when the first window is wanted. From then on its loop is the outer one and it
/// follows the desktop's appearance. Outlives every window. Main thread only.
class Toolkit {
 public:
  /// `mainLoop` and `workspace` outlive it.
  Toolkit(MainLoop& mainLoop, Workspace& workspace, UserInterfaceMaker makeUserInterface, MainMenu mainMenu);

  /// Null when there is no display; asked again, it tries again.
  [[nodiscard]] UserInterface* interface();

 private:
  MainLoop& mainLoop_;
  Workspace& workspace_;
  UserInterfaceMaker makeUserInterface_;
  const MainMenu mainMenu_;
  std::unique_ptr<UserInterface> interface_;
  Subscription appearance_;
};

}  // namespace nimbo
