// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "base/size_text.h"
#include "ui/dashboard/chart_bars.h"

namespace nimbo {
namespace {

constexpr const char* kNoFigure = "—";
constexpr TextStyle kFigureStyle{12, FontWeight::regular, ColorRole::label, TextAlignment::right, true};
constexpr double kTemperatureHeight = 24;
constexpr double kExpandedHeight = 87;
constexpr double kProcessHeight = 29;
constexpr const char* kProcessNoteToolTip =
    "Includes compressed memory charged to each process. Helper processes are listed separately. Protected or exited "
    "processes may be omitted. Process totals need not equal system memory used.";

struct MemoryRow {
  MemoryRowContent ResourcesContent::*shown;
  const char* title;
  ColorRole color;
  const char* toolTip;  ///< with a place for where swap is, or without
  std::string (*text)(const MemorySnapshot& memory);
};
constexpr std::array kRows{
    MemoryRow{&ResourcesContent::app, "App memory", ColorRole::teal, "",
              [](const auto& memory) { return gigabytesText(memory.app); }},
    MemoryRow{&ResourcesContent::wired, "Wired", ColorRole::indigo, "",
              [](const auto& memory) { return gigabytesText(memory.wired); }},
    MemoryRow{&ResourcesContent::compressed, "Compressed", ColorRole::orange, "",
              [](const auto& memory) { return gigabytesText(memory.compressed); }},
    MemoryRow{&ResourcesContent::available, "Available", ColorRole::secondaryLabel,
              "RAM available for use, including reclaimable cached files. This is more useful than counting only empty "
              "pages.",
              [](const auto& memory) { return gigabytesText(memory.available()); }},
    MemoryRow{&ResourcesContent::swap, "Swap used", ColorRole::secondaryLabel,
              "Memory stored {}. Swap may remain allocated after pressure subsides.",
              [](const auto& memory) { return memory.swap ? gigabytesText(*memory.swap) : "Unavailable"; }},
};

struct ResourcesView {
  const Settings& settings;
  const SystemReadings& readings;
  const ProcessView& processes;
  const Wording& wording;
  bool memory = settings.monitorMemory();
};

double temperatureHeight(const ResourcesView& view) {
  return view.settings.monitorTemperature() ? kTemperatureHeight : 0;
}

bool expanded(const ResourcesView& view) { return view.memory && view.processes.limit > kCollapsedProcessLimit; }

double expandedHeight(const ResourcesView& view) { return expanded(view) ? kExpandedHeight : 0; }

double pageHeight(const ResourcesView& view) {
  return (view.memory ? 596 : 278) + expandedHeight(view) + temperatureHeight(view);
}

std::string percentText(double fraction) { return fmt::format("{:.0f}%", fraction * 100); }

/// The reading to show; null when there is none or it cannot be trusted.
const MemorySnapshot* shownMemory(const ResourcesView& view) {
  const auto& readings = view.readings;
  return view.memory && readings.memory && !readings.memoryFailed ? &*readings.memory : nullptr;
}

bool awaitsFirstReading(const ResourcesView& view) {
  return view.memory && !view.readings.memory && !view.readings.memoryFailed;
}

const std::vector<double>& shownHistory(const ResourcesView& view) {
  return view.memory ? view.readings.memoryHistory : view.readings.cpuHistory;
}

std::string heroText(const ResourcesView& view) {
  if (const auto* memory = shownMemory(view)) return percentText(memory->usedFraction());
  return !view.memory && view.readings.cpu ? percentText(*view.readings.cpu) : kNoFigure;
}

std::string subtitleText(const ResourcesView& view) {
  if (!view.memory) return "Total CPU utilization · all cores";
  if (awaitsFirstReading(view)) return "Reading memory…";
  const auto* memory = shownMemory(view);
  if (memory == nullptr) return "Memory unavailable. Retrying automatically…";
  return fmt::format("{} of {} used", gigabytesText(memory->used()), gigabytesText(memory->total));
}

ColorRole pressureColor(MemoryPressure pressure) {
  switch (pressure) {
    case MemoryPressure::normal:
      return ColorRole::green;
    case MemoryPressure::warning:
      return ColorRole::orange;
    case MemoryPressure::critical:
      return ColorRole::red;
    case MemoryPressure::unknown:
      break;
  }
  return ColorRole::secondaryLabel;
}

std::string pressureText(MemoryPressure pressure) {
  if (pressure == MemoryPressure::unknown) return "Pressure unavailable";
  return fmt::format("● {} pressure", pressureWord(pressure));
}

std::string timeText(const ResourcesView& view) {
  if (awaitsFirstReading(view)) return "RECENT USAGE";
  const auto samples = shownHistory(view).size();
  const auto steps = samples == 0 ? 0 : samples - 1;
  return fmt::format("RECENT USAGE · {}s", steps * static_cast<std::size_t>(view.settings.refreshInterval().count()));
}

std::string temperatureText(const ResourcesView& view) {
  const auto& celsius = view.readings.temperature;
  if (!celsius) return fmt::format("CPU temperature unavailable on this {}", view.wording.computer);
  return fmt::format("CPU temperature  {:.0f}°C · hottest sensor", *celsius);
}

ButtonContent button(const char* identifier, const Rect& frame, ButtonLook look, const std::string& title) {
  return {identifier, frame, look, 11, title};
}

void fillSummary(ResourcesContent& content, const ResourcesView& view) {
  const auto* memory = shownMemory(view);
  const auto pressure = memory != nullptr ? memory->pressure : MemoryPressure::unknown;
  content.hero = {
      {18, 55, 302, 48}, {38, FontWeight::semibold, ColorRole::label, TextAlignment::left, true}, heroText(view)};
  content.subtitle = {{20, 108, 300, 18}, {12, FontWeight::regular, ColorRole::secondaryLabel}, subtitleText(view)};
  content.pressure = {{174, 210, 146, 16}, {11, FontWeight::medium, pressureColor(pressure), TextAlignment::right}};
  if (memory != nullptr) content.pressure.text = pressureText(pressure);
  content.pressure.visible = view.memory;
  content.time = {{20, 211, 154, 14}, {9, FontWeight::medium, ColorRole::tertiaryLabel}, timeText(view)};
}

std::string partsText(const MemorySnapshot& memory) {
  const auto percent = [&](std::uint64_t bytes) {
    return std::lround(static_cast<double>(bytes) / static_cast<double>(memory.total) * 100);
  };
  return fmt::format("App memory {}%, wired {}%, compressed {}%", percent(memory.app), percent(memory.wired),
                     percent(memory.compressed));
}

void fillCharts(ResourcesContent& content, const ResourcesView& view) {
  auto& history = content.history = {{20, 146, 300, 56}};
  const auto& samples = shownHistory(view);
  history.bars = historyBars(samples, view.memory ? ColorRole::teal : ColorRole::blue, {300, 56});
  history.accessibleName = view.memory ? "Memory history" : "CPU history";
  if (!samples.empty()) {
    history.percent = samples.back() * 100;
    history.reading = fmt::format("{}%", std::lround(history.percent));
  }

  auto& breakdown = content.breakdown = {{20, 243, 300, 8}};
  const auto* memory = shownMemory(view);
  breakdown.bars = breakdownBars(memory != nullptr ? std::optional(*memory) : std::nullopt, {300, 8});
  breakdown.accessibleName = "Memory breakdown";
  breakdown.visible = view.memory;
  if (memory != nullptr && memory->total > 0) {
    breakdown.percent = memory->usedFraction() * 100;
    breakdown.reading = partsText(*memory);
  }
}

void fillRows(ResourcesContent& content, const ResourcesView& view) {
  const auto* memory = shownMemory(view);
  for (std::size_t index = 0; index < kRows.size(); ++index) {
    const auto& row = kRows[index];
    const double y = 264 + 23 * static_cast<double>(index);
    const std::string text = memory != nullptr ? row.text(*memory) : kNoFigure;
    const std::string toolTip = fmt::format(fmt::runtime(row.toolTip), view.wording.swapPlace);
    content.*row.shown = {{{20, y, 160, 18}, {12, FontWeight::regular, row.color}, row.title, toolTip, view.memory},
                          {{190, y, 130, 18}, kFigureStyle, text, toolTip, view.memory}};
  }
}

void fillSensorLines(ResourcesContent& content, const ResourcesView& view) {
  const TextStyle style{11, FontWeight::medium, ColorRole::secondaryLabel, TextAlignment::left, true};
  const auto cpu = view.readings.cpu;
  content.cpu = {{20, 389, 300, 18}, style, cpu ? "CPU  " + percentText(*cpu) + " utilized" : "CPU  Measuring…"};
  content.cpu.visible = view.memory && view.settings.monitorCpu();
  content.temperature = {{20, view.memory ? 411.0 : 239.0, 300, 18}, style, temperatureText(view)};
  content.temperature.visible = view.settings.monitorTemperature();
}

std::size_t shownProcesses(const ResourcesView& view) {
  return std::min(view.processes.limit, view.processes.scan.processes.size());
}

std::string processNoteText(int unreadable) {
  if (unreadable < 1) return "Physical footprint · individual processes";
  return fmt::format("Physical footprint · {} inaccessible/exited", unreadable);
}

std::vector<LabelContent> processLabels(const ResourcesView& view) {
  const std::size_t shown = shownProcesses(view);
  if (shown == 0) {
    return {{{0, 7, 285, 18}, {12, FontWeight::regular, ColorRole::secondaryLabel}, "No readable processes yet"}};
  }
  std::vector<LabelContent> labels;
  for (std::size_t row = 0; row < shown; ++row) {
    const auto& [pid, name, bytes] = view.processes.scan.processes[row];
    const double y = 5 + kProcessHeight * static_cast<double>(row);
    labels.push_back({{0, y, 200, 19}, {12, FontWeight::medium}, name, fmt::format("{} · PID {}", name, pid)});
    labels.push_back({{201, y, 83, 19}, kFigureStyle, footprintText(bytes)});
  }
  return labels;
}

void fillProcesses(ResourcesContent& content, const ResourcesView& view) {
  const double t = temperatureHeight(view);
  const double e = expandedHeight(view);
  const bool visible = view.memory;
  const auto shown = shownProcesses(view);
  const double height = kProcessHeight * static_cast<double>(std::max<std::size_t>(shown, 1));
  const auto count = expanded(view) ? shown : kCollapsedProcessLimit;

  content.processTitle = {{20, 422 + t, 130, 15}, {10, FontWeight::semibold, ColorRole::secondaryLabel}};
  content.processTitle.text =
      view.processes.scan == ProcessScan{} ? "TOP PROCESSES" : fmt::format("TOP {} PROCESSES", count);
  content.processTitle.visible = visible;
  content.lessButton = button("less", {157, 418 + t, 72, 22}, ButtonLook::rounded, "Show less");
  content.lessButton.visible = visible && expanded(view);
  content.moreButton = button("more", {230, 418 + t, 93, 22}, ButtonLook::rounded, "Show more");
  content.moreButton.visible = visible;
  content.moreButton.enabled = view.processes.limit < view.processes.scan.processes.size();
  content.processes = {{20, 444 + t, 300, 87 + e}, {300, height}, processLabels(view), visible};
  content.processNote = {{20, 538 + e + t, 300, 14},
                         {9, FontWeight::regular, ColorRole::tertiaryLabel},
                         processNoteText(view.processes.scan.unreadable),
                         kProcessNoteToolTip,
                         visible};
}

void fillLastLine(ResourcesContent& content, const ResourcesView& view) {
  const double height = pageHeight(view);
  content.footer = {{20, height - 26, 170, 16}, {10, FontWeight::regular, ColorRole::tertiaryLabel}};
  content.footer.text = fmt::format("Updates every {}s", view.settings.refreshInterval().count());
  const auto& monitor = view.wording.systemMonitor;
  content.activityButton = button("activity", {194, height - 30, 130, 22}, ButtonLook::inlined, monitor + " ↗");
  content.activityButton.enabled = view.processes.activityMonitorEnabled;
  content.activityButton.accessibleName = monitor;
}

}  // namespace

double resourcesHeight(const DashboardSources& sources, const ProcessView& processes) {
  return pageHeight({sources.settings, sources.readings, processes, sources.wording});
}

ResourcesContent resourcesContent(const DashboardSources& sources, const ProcessView& processes) {
  const ResourcesView view{sources.settings, sources.readings, processes, sources.wording};
  ResourcesContent content;
  fillSummary(content, view);
  fillCharts(content, view);
  fillRows(content, view);
  fillSensorLines(content, view);
  fillProcesses(content, view);
  fillLastLine(content, view);
  return content;
}

}  // namespace nimbo
