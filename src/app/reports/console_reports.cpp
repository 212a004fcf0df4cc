// SPDX-License-Identifier: MIT
#include "app/reports/console_reports.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "base/size_text.h"
#include "system/process_scan.h"
#include "usage/usage_json.h"

namespace nimbo {
namespace {

template <class... Values>
void addLine(std::string& text, fmt::format_string<Values...> format, Values&&... values) {
  fmt::format_to(std::back_inserter(text), format, std::forward<Values>(values)...);
  text += '\n';
}

void addMemory(std::string& text, const MemorySnapshot& memory) {
  addLine(text, "Total: {}", gigabytesText(memory.total));
  addLine(text, "Used: {} ({:.0f}%)", gigabytesText(memory.used()), memory.usedFraction() * 100);
  addLine(text, "Available: {}", gigabytesText(memory.available()));
  addLine(text, "App: {}; wired: {}; compressed: {}", gigabytesText(memory.app), gigabytesText(memory.wired),
          gigabytesText(memory.compressed));
  addLine(text, "Pressure: {}; swap: {}", pressureWord(memory.pressure),
          memory.swap ? gigabytesText(*memory.swap) : "unavailable");
}

void addTemperature(std::string& text, std::optional<double> celsius) {
  addLine(text, "CPU temperature: {}",
          celsius ? fmt::format("{:.1f}°C (hottest available sensor)", *celsius) : "unavailable");
}

void addProcesses(std::string& text, ProcessTable& processes, const Clock& clock) {
  constexpr std::size_t kListed = 10;
  const auto before = clock.uptime();
  const ProcessScan scan = scanProcesses(processes, kListed);
  const std::chrono::duration<double, std::milli> elapsed = clock.uptime() - before;

  addLine(text, "Process scan: {} readable, {} inaccessible/exited, {:.1f} ms", scan.processes.size(), scan.unreadable,
          elapsed.count());
  for (std::size_t index = 0; index < std::min(kListed, scan.processes.size()); ++index) {
    const ProcessMemory& process = scan.processes[index];
    addLine(text, "{}\t{}\t{}", process.pid, footprintText(process.bytes), process.name);
  }
}

}  // namespace

ConsoleReport makeDiagnosticsReport(SystemSampler& sampler, TemperatureSensor& temperature, ProcessTable& processes,
                                    const Clock& clock) {
  const auto memory = sampler.snapshot();
  if (!memory) return {"", "Failed to read system memory\n", 1};

  ConsoleReport report;
  addMemory(report.output, *memory);
  addTemperature(report.output, temperature.temperature());
  addProcesses(report.output, processes, clock);
  return report;
}

ConsoleReport makeClaudeDesktopCheck(const ClaudeDesktopUsage& usage, std::string_view localZone) {
  const auto snapshot = usage.read(localZone);
  if (!snapshot) return {"", snapshot.error().message + '\n', 1};
  return {compactJsonText(usageJson(*snapshot)) + '\n', "", 0};
}

}  // namespace nimbo
