// SPDX-License-Identifier: MIT
#pragma once

#include "platform/template_image.h"

namespace nimbo {

/// Bars over an axis: memory without its chart.
[[nodiscard]] TemplateImage barsSymbol();

/// A cup on its saucer: Keep Awake.
[[nodiscard]] TemplateImage cupSymbol();

/// A cloud: the program as a whole.
[[nodiscard]] TemplateImage cloudSymbol();

}  // namespace nimbo
