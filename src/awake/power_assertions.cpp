// SPDX-License-Identifier: MIT
#include "awake/power_assertions.h"

#include <fmt/format.h>

#include <utility>

namespace nimbo {
namespace {

constexpr const char* kSystemReason = "Nimbo — keep {} awake while work continues";
constexpr const char* kDisplayReason = "Nimbo — keep display on";

}  // namespace

Result<void, PowerError> PowerAssertions::activate(bool keepDisplayOn) {
  const bool wasActive = isActive();
  if (!wasActive) {
    const auto id = client_.create(kPreventSystemSleep, fmt::format(kSystemReason, wording_.computer));
    if (!id) return tl::unexpected(id.error());
    systemId_ = *id;
  }
  if (!keepDisplayOn) {
    releaseDisplay();
    return {};
  }
  auto held = holdDisplay();
  if (!held && !wasActive) deactivate();
  return held;
}

Result<void, PowerError> PowerAssertions::holdDisplay() {
  if (displayId_) return {};
  const auto id = client_.create(kPreventDisplaySleep, kDisplayReason);
  if (!id) return tl::unexpected(id.error());
  displayId_ = *id;
  return {};
}

void PowerAssertions::releaseDisplay() {
  if (const auto id = std::exchange(displayId_, std::nullopt)) client_.release(*id);
}

void PowerAssertions::deactivate() {
  releaseDisplay();
  if (const auto id = std::exchange(systemId_, std::nullopt)) client_.release(*id);
}

}  // namespace nimbo
