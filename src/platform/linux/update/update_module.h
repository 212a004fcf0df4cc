// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "platform/bundle.h"
#include "platform/update_session.h"

namespace nimbo {

/// Where the user's downloads folder is, or is named.
struct UpdateFolders {
  std::filesystem::path home;
  std::filesystem::path config;
};

/// The one function that the module "nimbo-update" exports, under the name kUpdateSessionEntryName.
using UpdateSessionEntry = UpdateSession* (*)(const UpdateSetup& setup, const UpdateFolders& folders,
                                              UpdateRequest request, std::function<void()> finished);
inline constexpr const char* kUpdateSessionEntryName = "nimboMakeUpdateSession";

/// Makes sessions from the module "nimbo-update", which is loaded by the first one. `modules` outlives it.
[[nodiscard]] UpdateSessionMaker updateSessionFromModule(ModuleLoader& modules, UpdateSetup setup,
                                                         UpdateFolders folders);

}  // namespace nimbo
