// SPDX-License-Identifier: MIT
#include "command/report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "base/size_text.h"
#include "command/time_words.h"
#include "usage/usage_status.h"

namespace nimbo {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;  // of the JSON
constexpr int kBarLength = 20;
// Percent used from which the program's own bars are of another colour.
constexpr double kHigh = 75;
constexpr double kFull = 90;

const char* levelOf(double percentUsed) {
  return percentUsed >= kFull ? "full" : percentUsed >= kHigh ? "high" : "normal";
}

const char* levelOf(MemoryPressure pressure) {
  if (pressure == MemoryPressure::critical) return "full";
  return pressure == MemoryPressure::warning ? "high" : "normal";
}

/// Red, yellow or green, as the terminal's user has chosen these.
const char* colourOf(std::string_view level) {
  if (level == "full") return "\x1b[31m";
  return level == "high" ? "\x1b[33m" : "\x1b[32m";
}

/// "██████░░░░"
std::string barOf(double part, const char* level, bool coloured) {
  const auto filled = static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * kBarLength));
  std::string text = coloured ? colourOf(level) : "";
  for (int place = 0; place < filled; ++place) text += "█";
  if (coloured) text += "\x1b[0m";
  for (int place = filled; place < kBarLength; ++place) text += "░";
  return text;
}

/// Columns that a terminal needs for it: one for each character, which is so for all labels.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, [](char byte) { return (byte & '\xc0') != '\x80'; }));
}

std::string percentText(double percent) { return fmt::format("{:.0f}%", percent); }

int rounded(double percent) { return static_cast<int>(std::lround(std::clamp(percent, 0.0, 100.0))); }

template <class Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json timeOrNull(const std::optional<ReportTime>& time) { return time ? Json(isoTime(*time)) : Json(nullptr); }

Json figuresOf(const UsageState& state) {
  Json windows = Json::array();
  if (state.snapshot) {
    for (const UsageWindow& window : state.snapshot->windows) {
      windows.push_back(
          {{"title", window.title}, {"usedPercent", window.usedPercent}, {"resetsAt", timeOrNull(window.resetsAt)}});
    }
  }
  return {{"enabled", state.enabled},
          {"message", orNull(state.message)},
          {"fetchedAt", state.snapshot ? Json(isoTime(state.snapshot->fetchedAt)) : Json(nullptr)},
          {"source", state.snapshot ? orNull(state.snapshot->source) : Json(nullptr)},
          {"windows", std::move(windows)}};
}

void addRows(std::vector<ReportRow>& rows, const std::string& provider, const UsageState& state, ReportTime now) {
  if (!state.snapshot) return rows.push_back({provider, state.message.value_or("Not read yet.")});
  for (const UsageWindow& window : state.snapshot->windows) {
    std::string value = percentText(percentLeft(window)) + " left";
    if (window.resetsAt) value += ", resets " + clockTime(*window.resetsAt, now);
    rows.push_back(
        {provider + " " + window.title, std::move(value), percentLeft(window) / 100, levelOf(window.usedPercent)});
  }
  if (!isStale(state, now)) return;
  rows.push_back({provider, fmt::format("Last read {}. {}", clockTime(state.snapshot->fetchedAt, now),
                                        state.message.value_or(""))});
}

}  // namespace

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::string Report::page(bool coloured) const {
  std::size_t width = 0;
  const bool bars = std::ranges::any_of(rows, [](const ReportRow& row) { return row.bar.has_value(); });
  for (const ReportRow& row : rows) width = std::max(width, widthOf(row.label));
  std::string lines;
  for (const ReportRow& row : rows) {
    std::string line = row.label;
    if (width != 0) line.append(width - widthOf(row.label) + 2, ' ');
    if (row.bar) line += barOf(*row.bar, row.level, coloured) + "  ";
    // A text without a bar that belongs to none stands where the bars do.
    if (!row.bar && bars && row.level[0] != '\0') line.append(kBarLength + 2, ' ');
    lines += line + row.value + "\n";
  }
  return lines;
}

std::string Report::json() const {
  std::string tooltip;
  for (const ReportRow& row : rows) {
    tooltip += (tooltip.empty() ? "" : "\n") + row.label + (row.label.empty() ? "" : ": ") + row.value;
  }
  const Json document{{"version", kFormat},
                      {"text", text},
                      {"tooltip", error.value_or(tooltip)},
                      {"class", level},
                      {"percentage", percentage},
                      {"error", orNull(error)},
                      {name, figures}};
  return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Report reportOf(const AwakeStatus& status, ReportTime now) {
  Report report{.name = "awake"};
  std::string sentence;
  if (status.active) {
    std::string until;
    if (status.own && status.endsAt) until = " until " + clockTime(*status.endsAt, now);
    const std::string whom = status.holders.empty() ? "" : " for " + joined(status.holders);
    report.text = "Awake" + until + whom;
    report.level = "on";
    sentence = "On" + (status.own && until.empty() ? " until stopped" : until) + whom +
               (status.keepsDisplayOn ? ". Display stays on." : ". Display may sleep.");
  } else {
    report.level = "off";
    sentence = "Off.";
  }
  if (!status.message.empty()) sentence += " " + status.message;
  report.rows.push_back({"", std::move(sentence)});
  report.figures = {{"active", status.active},
                    {"own", status.own},
                    {"endsAt", timeOrNull(status.endsAt)},
                    {"keepsDisplayOn", status.keepsDisplayOn},
                    {"message", status.message},
                    {"holders", status.holders}};
  return report;
}

Report reportOf(const UsageStates& states, ReportTime now) {
  Report report{.level = "off", .name = "usage"};
  report.figures = Json::object();
  const UsageWindow* fullest = nullptr;
  for (const UsageProvider provider : kAllUsageProviders) {
    const UsageState& state = stateOf(states, provider);
    report.figures[std::string(rawValue(provider))] = figuresOf(state);
    if (!state.enabled) continue;
    addRows(report.rows, std::string(displayName(provider)), state, now);
    if (report.text.empty()) report.text = "AI –";
    if (!fullest) report.level = state.message ? "failed" : "normal";
    if (!state.snapshot) continue;
    for (const UsageWindow& window : state.snapshot->windows) {
      if (fullest && fullest->usedPercent >= window.usedPercent) continue;
      fullest = &window;
      report.text = "AI " + percentText(percentLeft(window)) + " left";
      report.level = isStale(state, now) ? "old" : levelOf(window.usedPercent);
      report.percentage = rounded(window.usedPercent);
    }
  }
  if (report.rows.empty()) report.rows.push_back({"", "AI usage is switched off in the settings."});
  return report;
}

Report reportOf(const SystemReadings& readings) {
  Report report{.level = "off", .name = "memory"};
  if (readings.memoryFailed) {
    report.error = "The system’s memory cannot be read.";
    report.level = "failed";
  }
  if (!readings.memory) return report;
  const MemorySnapshot& memory = *readings.memory;
  const auto part = [&memory](std::uint64_t bytes) {
    return static_cast<double>(bytes) / static_cast<double>(memory.total);
  };
  const double used = memory.usedFraction() * 100;
  report.level = levelOf(memory.pressure);
  report.percentage = rounded(used);
  report.text = "Memory " + percentText(used);
  report.rows = {
      {"Memory",
       fmt::format("{}, {} of {}", percentText(used), gigabytesText(memory.used()), gigabytesText(memory.total)),
       memory.usedFraction(), report.level},
      {"Applications", gigabytesText(memory.app), part(memory.app), report.level},
      {"Wired", gigabytesText(memory.wired), part(memory.wired), report.level},
      {"Compressed", gigabytesText(memory.compressed), part(memory.compressed), report.level},
      {"Available", gigabytesText(memory.available()), part(memory.available()), "normal"}};
  if (readings.cpu) {
    report.text += " · CPU " + percentText(*readings.cpu * 100);
    report.rows.push_back({"CPU", percentText(*readings.cpu * 100), readings.cpu, "normal"});
  }
  report.rows.push_back({"Swap used", memory.swap ? gigabytesText(*memory.swap) : "unavailable", {}, "normal"});
  report.rows.push_back({"Pressure", std::string(pressureWord(memory.pressure)), {}, "normal"});
  if (readings.temperature) report.text += fmt::format(" · {:.0f}°", *readings.temperature);
  report.rows.push_back({"Temperature",
                         readings.temperature ? fmt::format("{:.0f} °C", *readings.temperature) : "unavailable",
                         {},
                         "normal"});
  report.figures = {{"totalBytes", memory.total},           {"usedBytes", memory.used()},
                    {"availableBytes", memory.available()}, {"appBytes", memory.app},
                    {"wiredBytes", memory.wired},           {"compressedBytes", memory.compressed},
                    {"swapUsedBytes", orNull(memory.swap)}, {"pressure", pressureWord(memory.pressure)},
                    {"cpuLoad", orNull(readings.cpu)},      {"cpuTemperatureCelsius", orNull(readings.temperature)}};
  return report;
}

Report reportOf(const std::vector<ProcessMemory>& processes) {
  Report report{.name = "processes"};
  report.figures = Json::array();
  for (const ProcessMemory& process : processes) {
    report.figures.push_back({{"pid", process.pid}, {"name", process.name}, {"bytes", process.bytes}});
    report.rows.push_back(
        {"", fmt::format("{:>9}  {:>7}  {}", footprintText(process.bytes), process.pid, process.name)});
  }
  if (!processes.empty()) report.text = processes.front().name + " " + footprintText(processes.front().bytes);
  return report;
}

}  // namespace nimbo
