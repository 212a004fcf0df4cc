// SPDX-License-Identifier: MIT
#include "system/memory_snapshot.h"

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

}  // namespace nimbo
