// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "platform/status_bar.h"
#include "system/memory_snapshot.h"

namespace nimbo {

/// `memory` is the last reading; absent with `failed` unset when memory is not watched.
[[nodiscard]] StatusItemContent memoryItemContent(const std::optional<MemorySnapshot>& memory, bool failed,
                                                  bool showChart);

[[nodiscard]] StatusItemContent awakeItemContent(bool sessionActive);

/// The one item that stands for the whole program.
[[nodiscard]] StatusItemContent compactItemContent(bool sessionActive);

}  // namespace nimbo
