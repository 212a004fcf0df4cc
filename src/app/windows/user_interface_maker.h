// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "platform/module_loader.h"
#include "ui/user_interface.h"

namespace nimbo {

/// Makes the toolkit's side of the program; null when there is no display or no toolkit.
using UserInterfaceMaker = std::function<std::unique_ptr<UserInterface>()>;

/// Makes it from the module "nimbo-ui". What prevents it is written to standard error once.
[[nodiscard]] UserInterfaceMaker userInterfaceFromModule(ModuleLoader& loader,
                                                         DisplayNeed need = DisplayNeed::required);

}  // namespace nimbo
