// SPDX-License-Identifier: MIT
#include "system/system_readings.h"

#include <algorithm>

namespace nimbo {

std::string_view pressureWord(MemoryPressure pressure) {
  switch (pressure) {
    case MemoryPressure::normal:
      return "Normal";
    case MemoryPressure::warning:
      return "Elevated";
    case MemoryPressure::critical:
      return "High";
    case MemoryPressure::unknown:
      break;
  }
  return "Unavailable";
}

void appendToHistory(std::vector<double>& history, double value) {
  if (history.size() >= SystemReadings::kHistoryCapacity) history.erase(history.begin());
  history.push_back(std::clamp(value, 0.0, 1.0));
}

}  // namespace nimbo
