// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "platform/status_bar.h"
#include "platform/wording.h"
#include "system/system_readings.h"

namespace nimbo {

enum class MemoryPicture {
  chart,   ///< a bar
  symbol,  ///< beside a title that has the figure
  figure,  ///< percent, in digits
};

/// `memory` is the last reading; absent with `failed` unset when memory is not watched.
[[nodiscard]] StatusItemContent memoryItemContent(const std::optional<MemorySnapshot>& memory, bool failed,
                                                  MemoryPicture picture);

[[nodiscard]] StatusItemContent awakeItemContent(bool sessionActive);

/// The one item that stands for the whole program.
[[nodiscard]] StatusItemContent compactItemContent(bool sessionActive, const Wording& wording);

// The symbols on them.

/// Bars over an axis: memory without its chart.
[[nodiscard]] TemplateImage barsSymbol();

/// A cup on its saucer: Keep Awake. It is full and steams during a session, and is empty otherwise.
[[nodiscard]] TemplateImage cupSymbol(bool full);

/// A cloud: the program as a whole.
[[nodiscard]] TemplateImage cloudSymbol();

}  // namespace nimbo
