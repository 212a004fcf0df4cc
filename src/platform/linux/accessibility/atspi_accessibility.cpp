// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_accessibility.h"

#include <utility>

#include "platform/linux/accessibility/application_process.h"
#include "platform/linux/accessibility/atspi_application.h"
#include "platform/linux/desktop/application_marks.h"

namespace nimbo {

AtspiAccessibility::AtspiAccessibility(std::string sessionAddress, std::string procRoot)
    : sessionAddress_(std::move(sessionAddress)), procRoot_(std::move(procRoot)) {}

bool AtspiAccessibility::isTrusted() { return bus() != nullptr; }

// There is nobody to ask. What is missing is that applications offer their content, and that starts the bus, too.
void AtspiAccessibility::requestTrust() { enableAtspi(sessionAddress_); }

std::unique_ptr<AccessibleApplication> AtspiAccessibility::application(const std::string& bundleIdentifier) {
  const auto* const marks = applicationMarks(bundleIdentifier);
  if (marks == nullptr) return nullptr;

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
