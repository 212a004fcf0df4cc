// SPDX-License-Identifier: MIT
#include "ui/dashboard/process_list_view.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/size_text.h"

namespace nimbo {
namespace {

constexpr double kRowHeight = 29;

std::size_t shownCount(const ProcessScan& scan, std::size_t limit) { return std::min(limit, scan.processes.size()); }

}  // namespace

ProcessListContent processList(const ProcessScan& scan, std::size_t limit) {
  const std::size_t shown = shownCount(scan, limit);
  ProcessListContent list;
  list.document = {300, std::max(kRowHeight * static_cast<double>(shown), kRowHeight)};
  if (shown == 0) {
    list.labels.push_back(
        {{0, 7, 285, 18}, {12, FontWeight::regular, ColorRole::secondaryLabel}, "No readable processes yet"});
    return list;
  }
  for (std::size_t row = 0; row < shown; ++row) {
    const ProcessMemory& process = scan.processes[row];
    const double y = 5 + kRowHeight * static_cast<double>(row);
    list.labels.push_back({{0, y, 200, 19},
                           {12, FontWeight::medium},
                           process.name,
                           fmt::format("{} · PID {}", process.name, process.pid)});
    list.labels.push_back({{201, y, 83, 19},
                           {12, FontWeight::regular, ColorRole::label, TextAlignment::right, true},
                           footprintText(process.bytes)});
  }
  return list;
}

std::string processListTitle(const ProcessScan& scan, std::size_t limit) {
  return fmt::format("TOP {} PROCESSES", limit == kCollapsedProcessLimit ? limit : shownCount(scan, limit));
}

std::string processListNote(const ProcessScan& scan) {
  if (scan.unreadable < 1) return "Physical footprint · individual processes";
  return fmt::format("Physical footprint · {} inaccessible/exited", scan.unreadable);
}

}  // namespace nimbo
