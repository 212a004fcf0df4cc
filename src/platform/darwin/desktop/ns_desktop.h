// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/clock.h"
#include "platform/login_item.h"
#include "platform/system_events.h"
#include "platform/workspace.h"

namespace nimbo {

// What AppKit, Foundation and ServiceManagement do for the program. Main thread only.

[[nodiscard]] std::unique_ptr<Workspace> makeNsWorkspace();
[[nodiscard]] std::unique_ptr<SystemSleep> makeNsSystemSleep();
/// The application itself, as the log-in service knows it.
[[nodiscard]] std::unique_ptr<LoginItem> makeSmLoginItem();
[[nodiscard]] std::unique_ptr<Dates> makeNsDates();

/// The process of a running application; absent when it does not run. Any thread.
[[nodiscard]] std::optional<std::int32_t> runningApplication(const std::string& bundleIdentifier);

}  // namespace nimbo
