// SPDX-License-Identifier: MIT
#include "platform/linux/update/update_module.h"

#include <utility>

namespace nimbo {

UpdateSessionMaker updateSessionFromModule(ModuleLoader& modules, UpdateSetup setup, UpdateFolders folders) {
  return [&modules, setup = std::move(setup), folders = std::move(folders)](
             UpdateRequest request, std::function<void()> finished) -> std::unique_ptr<UpdateSession> {
    const auto symbol = modules.symbol("nimbo-update", kUpdateSessionEntryName);
    if (!symbol) return nullptr;
    const auto entry = reinterpret_cast<UpdateSessionEntry>(*symbol);
    return std::unique_ptr<UpdateSession>(entry(setup, folders, request, std::move(finished)));
  };
}

}  // namespace nimbo
