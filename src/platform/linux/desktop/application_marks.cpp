// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/application_marks.h"

#include <algorithm>
#include <array>

namespace nimbo {

// An application's name on the accessibility bus would not do: an Electron program bears the engine's or any it
// likes. Its process is what cannot be mistaken for a browser that shows the same page. The command-line tool that
// shares the name "claude" never shows windows. A Snap's desktop entry bears the names of package and program.
const ApplicationMarks* applicationMarks(std::string_view bundleIdentifier) {
  static const std::array kApplications{
      ApplicationMarks{"com.anthropic.claudefordesktop",
                       {"claude-desktop", "Claude"},
                       {"claude"},
                       {"com.anthropic.claudefordesktop", "claude-desktop", "com.anthropic.Claude", "Claude",
                        "claude-desktop_claude-desktop"}},
  };
  const auto* const found = std::find_if(kApplications.begin(), kApplications.end(), [&](const auto& application) {
    return application.identifier == bundleIdentifier;
  });
  return found == kApplications.end() ? nullptr : found;
}

}  // namespace nimbo
