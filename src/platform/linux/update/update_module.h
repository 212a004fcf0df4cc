// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <utility>

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
[[nodiscard]] inline UpdateSessionMaker updateSessionFromModule(ModuleLoader& modules, UpdateSetup setup,
                                                                UpdateFolders folders) {
  return [&modules, setup = std::move(setup), folders = std::move(folders)](
             UpdateRequest request, std::function<void()> finished) -> std::unique_ptr<UpdateSession> {
    const auto symbol = modules.symbol("nimbo-update", kUpdateSessionEntryName);
    if (!symbol) return nullptr;
    const auto entry = reinterpret_cast<UpdateSessionEntry>(*symbol);
    return std::unique_ptr<UpdateSession>(entry(setup, folders, request, std::move(finished)));
  };
}

}  // namespace nimbo
