// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/wording.h"

namespace nimbo {

/// The words of Linux desktops. The system monitor is the one that this desktop opens, by the name in its desktop
/// entry; looks at a few files. Parameters as for findSystemMonitor() and findInstalledApplication().
[[nodiscard]] Wording linuxWording(const std::string& currentDesktop, const std::string& searchPath,
                                   const std::vector<std::filesystem::path>& applicationFolders);

}  // namespace nimbo
