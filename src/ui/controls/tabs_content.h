// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/geometry.h"

namespace nimbo {

/// A row of segments of which one is selected.
struct TabsContent {
  Rect frame;
  std::vector<std::string> labels;
  std::size_t selected = 0;
  bool operator==(const TabsContent&) const = default;
};

}  // namespace nimbo
