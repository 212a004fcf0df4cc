// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/clock.h"
#include "platform/process_table.h"
#include "platform/temperature_sensor.h"
#include "system/system_sampler.h"

namespace nimbo {

/// What a console mode leaves behind: text for the two output streams and the exit status.
struct DiagnosticsReport {
  std::string output;
  std::string errorOutput;
  int exitStatus = 0;
};

/// The report of "--diagnostics": memory, CPU temperature and the largest processes, read once. A
/// missing temperature or swap figure is told in the report; without a memory reading there is none.
[[nodiscard]] DiagnosticsReport makeDiagnosticsReport(SystemSampler& sampler, TemperatureSensor& temperature,
                                                      ProcessTable& processes, const Clock& clock);

}  // namespace nimbo
