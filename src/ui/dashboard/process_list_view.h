// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "system/process_scan.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

inline constexpr std::size_t kCollapsedProcessLimit = 3;

inline constexpr const char* kProcessNoteToolTip =
    "Includes compressed memory charged to each process. Helper processes are listed separately. Protected or exited "
    "processes may be omitted. Process totals need not equal system memory used.";

/// The largest `limit` processes as a scrolling list; its frame is left to the page.
[[nodiscard]] ProcessListContent processList(const ProcessScan& scan, std::size_t limit);

/// The heading over that list.
[[nodiscard]] std::string processListTitle(const ProcessScan& scan, std::size_t limit);

/// The line under it.
[[nodiscard]] std::string processListNote(const ProcessScan& scan);

}  // namespace nimbo
