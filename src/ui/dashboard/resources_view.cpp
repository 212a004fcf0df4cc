// SPDX-License-Identifier: MIT
#include "ui/dashboard/resources_view.h"

#include <fmt/format.h>

#include <array>

#include "base/size_text.h"

namespace nimbo {
namespace {

constexpr const char* kNoFigure = "—";
constexpr double kTemperatureHeight = 24;
constexpr double kExpandedHeight = 87;

constexpr std::array<const char*, 5> kRowTitles{"App memory", "Wired", "Compressed", "Available", "Swap used"};
constexpr std::array kRowColors{ColorRole::teal, ColorRole::indigo, ColorRole::orange, ColorRole::secondaryLabel,
                                ColorRole::secondaryLabel};
constexpr std::array<const char*, 5> kRowToolTips{
    "", "", "",
    "RAM available for use, including reclaimable cached files. This is more useful than counting only empty pages.",
    "Memory stored on disk. Swap may remain allocated after pressure subsides."};

double temperatureHeight(const ResourcesPage& page) { return page.temperatureVisible ? kTemperatureHeight : 0; }

bool expanded(const ResourcesPage& page) { return page.memoryEnabled && page.processLimit > kCollapsedProcessLimit; }

double expandedHeight(const ResourcesPage& page) { return expanded(page) ? kExpandedHeight : 0; }

std::string percentText(double fraction) { return fmt::format("{:.0f}%", fraction * 100); }

/// The reading to show; null when there is none or it cannot be trusted.
const MemorySnapshot* shownMemory(const ResourcesPage& page) {
  const auto& sample = page.sample;
  if (!page.memoryEnabled || !sample || sample->memoryFailed || !sample->memory) return nullptr;
  return &*sample->memory;
}

std::optional<double> shownCpu(const ResourcesPage& page) { return page.sample ? page.sample->cpu : std::nullopt; }

std::string heroText(const ResourcesPage& page) {
  if (const auto* memory = shownMemory(page)) return percentText(memory->usedFraction());
  const auto cpu = shownCpu(page);
  return !page.memoryEnabled && cpu ? percentText(*cpu) : kNoFigure;
}

std::string subtitleText(const ResourcesPage& page) {
  if (!page.memoryEnabled) return "Total CPU utilization · all cores";
  if (!page.sample) return "Reading memory…";
  const auto* memory = shownMemory(page);
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

std::array<std::string, 5> rowTexts(const ResourcesPage& page) {
  const auto* memory = shownMemory(page);
  if (memory == nullptr) return {kNoFigure, kNoFigure, kNoFigure, kNoFigure, kNoFigure};
  return {gigabytesText(memory->app), gigabytesText(memory->wired), gigabytesText(memory->compressed),
          gigabytesText(memory->available()), memory->swap ? gigabytesText(*memory->swap) : "Unavailable"};
}

std::string timeText(const ResourcesPage& page) {
  if (!page.sample) return "RECENT USAGE";
  const auto& history = page.memoryEnabled ? page.sample->memoryHistory : page.sample->cpuHistory;
  const auto steps = history.empty() ? 0 : history.size() - 1;
  return fmt::format("RECENT USAGE · {}s", steps * static_cast<std::size_t>(page.sample->interval.count()));
}

void fillSummary(DashboardContent& content, const ResourcesPage& page) {
  const auto* memory = shownMemory(page);
  content.hero = {{18, 55, 302, 48}, {38, FontWeight::semibold, ColorRole::label, TextAlignment::left, true}};
  content.hero.text = heroText(page);
  content.subtitle = {{20, 108, 300, 18}, {12, FontWeight::regular, ColorRole::secondaryLabel}, subtitleText(page)};

  const auto pressure = memory != nullptr ? memory->pressure : MemoryPressure::unknown;
  content.pressure = {{174, 210, 146, 16},
                      {11, FontWeight::medium, pressureColor(pressure), TextAlignment::right},
                      memory != nullptr ? pressureText(pressure) : std::string()};
  content.time = {{20, 211, 154, 14}, {9, FontWeight::medium, ColorRole::tertiaryLabel}, timeText(page)};
  content.hero.visible = content.subtitle.visible = content.time.visible = page.visible;
  content.pressure.visible = page.visible && page.memoryEnabled;
}

void fillCharts(DashboardContent& content, const ResourcesPage& page) {
  content.history = {{20, 146, 300, 56}, {}, ColorRole::teal, "Memory history", page.visible};
  if (!page.memoryEnabled) {
    content.history.tint = ColorRole::blue;
    content.history.accessibleName = "CPU history";
  }
  if (page.sample) {
    content.history.history = page.memoryEnabled ? page.sample->memoryHistory : page.sample->cpuHistory;
  }

  content.breakdown = {{20, 243, 300, 8}, {}, "Memory breakdown", page.visible && page.memoryEnabled};
  if (const auto* memory = shownMemory(page)) content.breakdown.snapshot = *memory;
}

void fillRows(DashboardContent& content, const ResourcesPage& page) {
  const auto texts = rowTexts(page);
  const bool visible = page.visible && page.memoryEnabled;
  for (std::size_t row = 0; row < texts.size(); ++row) {
    const double y = 264 + 23 * static_cast<double>(row);
    content.rows[row].title = {
        {20, y, 160, 18}, {12, FontWeight::regular, kRowColors[row]}, kRowTitles[row], kRowToolTips[row], visible};
    content.rows[row].value = {{190, y, 130, 18},
                               {12, FontWeight::regular, ColorRole::label, TextAlignment::right, true},
                               texts[row],
                               kRowToolTips[row],
                               visible};
  }
}

void fillSensorLines(DashboardContent& content, const ResourcesPage& page) {
  const TextStyle style{11, FontWeight::medium, ColorRole::secondaryLabel, TextAlignment::left, true};
  const auto cpu = shownCpu(page);
  content.cpu = {{20, 389, 300, 18}, style};
  content.cpu.text = "CPU  " + (cpu ? percentText(*cpu) + " utilized" : std::string("Measuring…"));
  content.cpu.visible = page.visible && page.memoryEnabled && page.cpuVisible;

  content.temperature = {{20, page.memoryEnabled ? 411.0 : 239.0, 300, 18}, style, page.temperature};
  content.temperature.visible = page.visible && page.temperatureVisible;
}

void fillProcesses(DashboardContent& content, const ResourcesPage& page) {
  const double t = temperatureHeight(page);
  const double e = expandedHeight(page);
  const bool visible = page.visible && page.memoryEnabled;

  content.processTitle = {{20, 422 + t, 130, 15}, {10, FontWeight::semibold, ColorRole::secondaryLabel}};
  content.processTitle.text = processListTitle(page.processScan, page.processLimit);
  content.processTitle.visible = visible;
  content.lessButton = {"less", {157, 418 + t, 72, 22}, ButtonLook::rounded, 11, "Show less"};
  content.lessButton.visible = visible && expanded(page);
  content.moreButton = {"more", {230, 418 + t, 93, 22}, ButtonLook::rounded, 11, "Show more"};
  content.moreButton.visible = visible;
  content.moreButton.enabled = page.processLimit < page.processScan.processes.size();
  content.processes = processList(page.processScan, page.processLimit);
  content.processes.frame = {20, 444 + t, 300, 87 + e};
  content.processes.visible = visible;
  content.processNote = {{20, 538 + e + t, 300, 14}, {9, FontWeight::regular, ColorRole::tertiaryLabel}};
  content.processNote.text = processListNote(page.processScan);
  content.processNote.toolTip = kProcessNoteToolTip;
  content.processNote.visible = visible;
}

void fillLastLine(DashboardContent& content, const ResourcesPage& page) {
  const double height = resourcesPageHeight(page);
  content.footer = {{20, height - 26, 170, 16}, {10, FontWeight::regular, ColorRole::tertiaryLabel}};
  if (page.refreshInterval) content.footer.text = fmt::format("Updates every {}s", page.refreshInterval->count());
  content.footer.visible = page.visible;
  content.activityButton = {"activity", {194, height - 30, 130, 22}, ButtonLook::inlined, 11, "Activity Monitor ↗"};
  content.activityButton.accessibleName = "Activity Monitor";
  content.activityButton.visible = page.visible;
  content.activityButton.enabled = page.activityMonitorEnabled;
}

}  // namespace

std::string temperatureLine(std::optional<double> celsius) {
  if (!celsius) return "CPU temperature unavailable on this Mac";
  return fmt::format("CPU temperature  {:.0f}°C · hottest sensor", *celsius);
}

double resourcesPageHeight(const ResourcesPage& page) {
  return (page.memoryEnabled ? 596 : 278) + expandedHeight(page) + temperatureHeight(page);
}

void fillResourcesPage(DashboardContent& content, const ResourcesPage& page) {
  fillSummary(content, page);
  fillCharts(content, page);
  fillRows(content, page);
  fillSensorLines(content, page);
  fillProcesses(content, page);
  fillLastLine(content, page);
}

}  // namespace nimbo
