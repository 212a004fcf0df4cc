// SPDX-License-Identifier: MIT
#include "ui/dashboard/resources_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "base/size_text.h"

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
  const char* title;
  ColorRole color;
  const char* toolTip;
  std::string (*text)(const MemorySnapshot& memory);
};
constexpr std::array kRows{
    MemoryRow{"App memory", ColorRole::teal, "", [](const auto& memory) { return gigabytesText(memory.app); }},
    MemoryRow{"Wired", ColorRole::indigo, "", [](const auto& memory) { return gigabytesText(memory.wired); }},
    MemoryRow{"Compressed", ColorRole::orange, "", [](const auto& memory) { return gigabytesText(memory.compressed); }},
    MemoryRow{"Available", ColorRole::secondaryLabel,
              "RAM available for use, including reclaimable cached files. This is more useful than counting only empty "
              "pages.",
              [](const auto& memory) { return gigabytesText(memory.available()); }},
    MemoryRow{"Swap used", ColorRole::secondaryLabel,
              "Memory stored on disk. Swap may remain allocated after pressure subsides.",
              [](const auto& memory) { return memory.swap ? gigabytesText(*memory.swap) : "Unavailable"; }},
};

double temperatureHeight(const ResourcesView& view) { return view.temperatureEnabled ? kTemperatureHeight : 0; }

bool expanded(const ResourcesView& view) { return view.memoryEnabled && view.processLimit > kCollapsedProcessLimit; }

double expandedHeight(const ResourcesView& view) { return expanded(view) ? kExpandedHeight : 0; }

bool memoryVisible(const ResourcesView& view) { return view.visible && view.memoryEnabled; }

std::string percentText(double fraction) { return fmt::format("{:.0f}%", fraction * 100); }

/// The reading to show; null when there is none or it cannot be trusted.
const MemorySnapshot* shownMemory(const ResourcesView& view) {
  const auto& readings = view.readings;
  return view.memoryEnabled && readings.memory && !readings.memoryFailed ? &*readings.memory : nullptr;
}

bool awaitsFirstReading(const ResourcesView& view) {
  return view.memoryEnabled && !view.readings.memory && !view.readings.memoryFailed;
}

const std::vector<double>& shownHistory(const ResourcesView& view) {
  return view.memoryEnabled ? view.readings.memoryHistory : view.readings.cpuHistory;
}

std::string heroText(const ResourcesView& view) {
  if (const auto* memory = shownMemory(view)) return percentText(memory->usedFraction());
  return !view.memoryEnabled && view.readings.cpu ? percentText(*view.readings.cpu) : kNoFigure;
}

std::string subtitleText(const ResourcesView& view) {
  if (!view.memoryEnabled) return "Total CPU utilization · all cores";
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
  return fmt::format("RECENT USAGE · {}s", steps * static_cast<std::size_t>(view.refreshInterval.count()));
}

std::string temperatureText(std::optional<double> celsius) {
  if (!celsius) return "CPU temperature unavailable on this Mac";
  return fmt::format("CPU temperature  {:.0f}°C · hottest sensor", *celsius);
}

LabelContent label(const Rect& frame, const TextStyle& style, std::string text, bool visible,
                   const char* toolTip = "") {
  return {frame, style, std::move(text), toolTip, visible};
}

ButtonContent button(const char* identifier, const Rect& frame, ButtonLook look, const char* title, bool visible,
                     bool enabled = true) {
  ButtonContent content{identifier, frame, look, 11, title};
  content.visible = visible;
  content.enabled = enabled;
  return content;
}

void fillSummary(DashboardContent& content, const ResourcesView& view) {
  const auto* memory = shownMemory(view);
  const auto pressure = memory != nullptr ? memory->pressure : MemoryPressure::unknown;
  content.hero = label({18, 55, 302, 48}, {38, FontWeight::semibold, ColorRole::label, TextAlignment::left, true},
                       heroText(view), view.visible);
  content.subtitle =
      label({20, 108, 300, 18}, {12, FontWeight::regular, ColorRole::secondaryLabel}, subtitleText(view), view.visible);
  content.pressure = label({174, 210, 146, 16}, {11, FontWeight::medium, pressureColor(pressure), TextAlignment::right},
                           memory != nullptr ? pressureText(pressure) : "", memoryVisible(view));
  content.time =
      label({20, 211, 154, 14}, {9, FontWeight::medium, ColorRole::tertiaryLabel}, timeText(view), view.visible);
}

void fillCharts(DashboardContent& content, const ResourcesView& view) {
  content.history = {{20, 146, 300, 56}, shownHistory(view), ColorRole::teal, "Memory history", view.visible};
  if (!view.memoryEnabled) {
    content.history.tint = ColorRole::blue;
    content.history.accessibleName = "CPU history";
  }
  content.breakdown = {{20, 243, 300, 8}, {}, "Memory breakdown", memoryVisible(view)};
  if (const auto* memory = shownMemory(view)) content.breakdown.snapshot = *memory;
}

void fillRows(DashboardContent& content, const ResourcesView& view) {
  const auto* memory = shownMemory(view);
  for (std::size_t index = 0; index < kRows.size(); ++index) {
    const auto& row = kRows[index];
    const double y = 264 + 23 * static_cast<double>(index);
    content.rows[index] = {
        label({20, y, 160, 18}, {12, FontWeight::regular, row.color}, row.title, memoryVisible(view), row.toolTip),
        label({190, y, 130, 18}, kFigureStyle, memory != nullptr ? row.text(*memory) : kNoFigure, memoryVisible(view),
              row.toolTip)};
  }
}

void fillSensorLines(DashboardContent& content, const ResourcesView& view) {
  const TextStyle style{11, FontWeight::medium, ColorRole::secondaryLabel, TextAlignment::left, true};
  const auto cpu = view.readings.cpu;
  content.cpu = label({20, 389, 300, 18}, style, cpu ? "CPU  " + percentText(*cpu) + " utilized" : "CPU  Measuring…",
                      memoryVisible(view) && view.cpuEnabled);
  content.temperature = label({20, view.memoryEnabled ? 411.0 : 239.0, 300, 18}, style,
                              temperatureText(view.readings.temperature), view.visible && view.temperatureEnabled);
}

std::size_t shownProcesses(const ResourcesView& view) {
  return std::min(view.processLimit, view.processes.processes.size());
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
    const auto& [pid, name, bytes] = view.processes.processes[row];
    const double y = 5 + kProcessHeight * static_cast<double>(row);
    labels.push_back({{0, y, 200, 19}, {12, FontWeight::medium}, name, fmt::format("{} · PID {}", name, pid)});
    labels.push_back({{201, y, 83, 19}, kFigureStyle, footprintText(bytes)});
  }
  return labels;
}

void fillProcesses(DashboardContent& content, const ResourcesView& view) {
  const double t = temperatureHeight(view);
  const double e = expandedHeight(view);
  const bool visible = memoryVisible(view);
  const auto shown = shownProcesses(view);
  const double height = kProcessHeight * static_cast<double>(std::max<std::size_t>(shown, 1));

  content.processTitle =
      label({20, 422 + t, 130, 15}, {10, FontWeight::semibold, ColorRole::secondaryLabel},
            fmt::format("TOP {} PROCESSES", expanded(view) ? shown : kCollapsedProcessLimit), visible);
  content.lessButton =
      button("less", {157, 418 + t, 72, 22}, ButtonLook::rounded, "Show less", visible && expanded(view));
  content.moreButton = button("more", {230, 418 + t, 93, 22}, ButtonLook::rounded, "Show more", visible,
                              view.processLimit < view.processes.processes.size());
  content.processes = {{20, 444 + t, 300, 87 + e}, {300, height}, processLabels(view), visible};
  content.processNote = label({20, 538 + e + t, 300, 14}, {9, FontWeight::regular, ColorRole::tertiaryLabel},
                              processNoteText(view.processes.unreadable), visible, kProcessNoteToolTip);
}

void fillLastLine(DashboardContent& content, const ResourcesView& view) {
  const double height = resourcesHeight(view);
  content.footer = label({20, height - 26, 170, 16}, {10, FontWeight::regular, ColorRole::tertiaryLabel},
                         fmt::format("Updates every {}s", view.refreshInterval.count()), view.visible);
  content.activityButton = button("activity", {194, height - 30, 130, 22}, ButtonLook::inlined, "Activity Monitor ↗",
                                  view.visible, view.activityMonitorEnabled);
  content.activityButton.accessibleName = "Activity Monitor";
}

}  // namespace

double resourcesHeight(const ResourcesView& view) {
  return (view.memoryEnabled ? 596 : 278) + expandedHeight(view) + temperatureHeight(view);
}

void fillResources(DashboardContent& content, const ResourcesView& view) {
  fillSummary(content, view);
  fillCharts(content, view);
  fillRows(content, view);
  fillSensorLines(content, view);
  fillProcesses(content, view);
  fillLastLine(content, view);
}

}  // namespace nimbo
