// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform/updater.h"

namespace nimbo {

/// The updater of the framework that lies in the application, begun, with windows of its own; it reads feed and key
/// from Info.plist itself. Null when the application has no such framework. Main thread only.
[[nodiscard]] std::unique_ptr<Updater> makeFrameworkUpdater();

}  // namespace nimbo
