// SPDX-License-Identifier: MIT
#include "platform/linux/atspi_accessibility.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/application_process.h"
#include "platform/linux/atspi_application.h"

namespace nimbo {
namespace {

// An application's name on the accessibility bus would not do: an Electron program bears the engine's or any it
// likes. Its process is what cannot be mistaken for a browser that shows the same page. The command-line tool that
// shares the name "claude" never shows windows.
const std::array kApplications{
    ApplicationMarks{"com.anthropic.claudefordesktop", {"claude-desktop", "Claude"}, {"claude"}},
};

}  // namespace

AtspiAccessibility::AtspiAccessibility(std::string sessionAddress, std::string procRoot)
    : sessionAddress_(std::move(sessionAddress)), procRoot_(std::move(procRoot)) {}

bool AtspiAccessibility::isTrusted() { return bus() != nullptr; }

std::unique_ptr<AccessibleApplication> AtspiAccessibility::application(const std::string& bundleIdentifier) {
  const auto* const marks = std::find_if(kApplications.begin(), kApplications.end(), [&](const auto& application) {
    return application.identifier == bundleIdentifier;
  });
  if (marks == kApplications.end()) return nullptr;

  if (const auto connection = bus()) {
    for (const auto& root : connection->applications()) {
      const auto process = connection->processOf(root);
      if (!process || !isProcessOf(*marks, procRoot_, *process, ProcessShows::windows)) continue;
      return std::make_unique<AtspiApplication>(sessionAddress_, connection, root);
    }
  }
  if (!isRunning(*marks, procRoot_)) return nullptr;
  return std::make_unique<AtspiApplication>(sessionAddress_, nullptr, std::nullopt);
}

std::shared_ptr<AtspiBus> AtspiAccessibility::bus() {
  auto connection = bus_.lock();
  if (!connection || !connection->answers()) connection = AtspiBus::connect(sessionAddress_);
  bus_ = connection;
  return connection;
}

}  // namespace nimbo
