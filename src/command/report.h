// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "remote_control/remote_control.h"
#include "system/process_scan.h"

namespace nimbo {

/// One line of a page.
struct ReportRow {
  std::string label;
  std::string value;
  std::optional<double> bar{};  ///< filled part, 0…1; absent for none
  const char* level = "";       ///< as of the report; decides the bar's colour
};

/// What a command knows, for eyes, for bars and for programs; docs/commands.md describes it.
struct Report {
  std::string text{};                        ///< the short line; empty when there is nothing to show
  const char* level = "normal";              ///< of docs/commands.md, "class"
  int percentage = 0;                        ///< 0…100
  std::vector<ReportRow> rows{};             ///< the page
  std::optional<std::string> error{};        ///< why there are no figures
  const char* name = "";                     ///< of the figures
  nlohmann::ordered_json figures = nullptr;  ///< null where there are none

  [[nodiscard]] std::string page(bool coloured) const;
  [[nodiscard]] std::string json() const;
};

/// "make, claude"
[[nodiscard]] std::string joined(const std::vector<std::string>& names);

using ReportTime = std::chrono::system_clock::time_point;

[[nodiscard]] Report reportOf(const AwakeStatus& status, ReportTime now);
[[nodiscard]] Report reportOf(const UsageStates& states, ReportTime now);
/// No figures, and an error only if the memory's last reading failed, when the readings have no memory.
[[nodiscard]] Report reportOf(const SystemReadings& readings);
[[nodiscard]] Report reportOf(const std::vector<ProcessMemory>& processes);

}  // namespace nimbo
