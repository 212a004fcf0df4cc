// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "platform/workspace.h"
#include "ui/controls/control_content.h"

namespace nimbo {

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  double alpha = 1;  ///< straight, not premultiplied
  bool operator==(const Color&) const = default;
};

/// Every role but quaternaryLabel is opaque and dark or light enough to be read as small text on
/// `panelBackground`; quaternaryLabel is the background of charts and bars.
[[nodiscard]] Color color(ColorRole role, Appearance appearance);

[[nodiscard]] Color panelBackground(Appearance appearance);

/// The background of a card on the panel; the text roles are readable on it, too.
[[nodiscard]] Color cardGround(Appearance appearance);

/// Thin lines: the panel's border and the one above its footer.
[[nodiscard]] Color separatorColor(Appearance appearance);

/// The background of what is on, selected or pressed by Return, and the text on it. Not the desktop's
/// accent colour, so that the contrast is always enough.
[[nodiscard]] Color accentGround(Appearance appearance);
[[nodiscard]] Color accentLabel(Appearance appearance);

/// Inside fields and check boxes that are off.
[[nodiscard]] Color fieldGround(Appearance appearance);

/// Around fields and check boxes; strong enough to tell where they are.
[[nodiscard]] Color fieldBorder(Appearance appearance);

}  // namespace nimbo
