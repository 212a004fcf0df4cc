// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "platform/bundle.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"
#include "ui/user_interface.h"

namespace nimbo {

/// Makes the toolkit's side of the program; null when there is no display or no toolkit.
using UserInterfaceMaker = std::function<std::unique_ptr<UserInterface>()>;

/// Makes it from the module "nimbo-ui". What prevents it is written to standard error once.
[[nodiscard]] UserInterfaceMaker userInterfaceFromModule(ModuleLoader& loader,
                                                         DisplayNeed need = DisplayNeed::required);

/// The toolkit, loaded when the first window is wanted. From then on its loop is the outer one and it
/// follows the desktop's appearance. Outlives every window. Main thread only.
class Toolkit {
 public:
  /// `mainLoop` and `workspace` outlive it.
  Toolkit(MainLoop& mainLoop, Workspace& workspace, UserInterfaceMaker makeUserInterface, MainMenu mainMenu);

  /// Null when there is no display; asked again, it tries again.
  [[nodiscard]] UserInterface* interface();

  /// Puts an alert into `alert`, which is empty again when `answered` gets the index of the button. False
  /// when there is no display.
  bool showAlert(std::unique_ptr<Alert>& alert, const AlertContent& content,
                 std::function<void(std::size_t button)> answered);

 private:
  MainLoop& mainLoop_;
  Workspace& workspace_;
  UserInterfaceMaker makeUserInterface_;
  const MainMenu mainMenu_;
  std::unique_ptr<UserInterface> interface_;
  Subscription appearance_;
};

}  // namespace nimbo
