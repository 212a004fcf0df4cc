// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_name.h"

#include <strings.h>

namespace nimbo {

bool desktopIs(std::string_view currentDesktop, std::string_view name) {
  while (true) {
    const auto end = currentDesktop.find(':');
    const std::string_view part = currentDesktop.substr(0, end);
    if (part.size() == name.size() && ::strncasecmp(part.data(), name.data(), name.size()) == 0) return true;
    if (end == std::string_view::npos) return false;
    currentDesktop.remove_prefix(end + 1);
  }
}

}  // namespace nimbo
