// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"
#include "platform/process_table.h"
#include "platform/temperature_sensor.h"
#include "system/system_sampler.h"
#include "usage/claude/claude_desktop_usage.h"

namespace nimbo {

/// What a console mode leaves behind: text for the two output streams and the exit status.
struct ConsoleReport {
  std::string output;
  std::string errorOutput;
  int exitStatus = 0;
};

/// The report of "--diagnostics": memory, CPU temperature and the largest processes, read once. A
/// missing temperature or swap figure is told in the report; without a memory reading there is none.
[[nodiscard]] ConsoleReport makeDiagnosticsReport(SystemSampler& sampler, TemperatureSensor& temperature,
                                                  ProcessTable& processes, const Clock& clock);

/// The outcome of "--claude-desktop-check": one reading of the desktop application's usage page, as one
/// line of JSON, or what the user would be told instead. Blocks like the reading.
[[nodiscard]] ConsoleReport makeClaudeDesktopCheck(const ClaudeDesktopUsage& usage, std::string_view localZone);

}  // namespace nimbo
