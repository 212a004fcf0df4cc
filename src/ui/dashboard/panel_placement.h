// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "base/geometry.h"

namespace nimbo {

/// Between the panel and the dashboard, in points.
inline constexpr double kGapToPanel = 4;

struct Screen {
  Rect frame;
  Rect visibleFrame;  ///< without panels and docks
  bool operator==(const Screen&) const = default;
};

/// The edge of a screen along which the menu bar or the desktop's panel runs.
enum class ScreenEdge { top, bottom, left, right };

/// What the dashboard hangs from. Global coordinates, y downwards.
struct PanelAnchor {
  Rect rect;  ///< of the item; across the menu bar or panel as thick as that, where its thickness is known
  ScreenEdge edge = ScreenEdge::top;
  Rect visibleFrame;     ///< of the screen it is on
  bool guessed = false;  ///< an item was clicked, but where could not be told
  bool operator==(const PanelAnchor&) const = default;
};

/// The place for a panel whose item the bar reported at `reported`. Bars report in three ways, in
/// screen coordinates, relative to the item, and not at all; a place that is not along a screen's
/// edge is not believed, and neither is one that looks relative: instead counts `pointer`, where the click was, else
/// the end of the panel where items usually are. Absent only without a screen.
[[nodiscard]] std::optional<PanelAnchor> panelAnchor(const std::vector<Screen>& screens,
                                                     const std::optional<Rect>& reported,
                                                     const std::optional<Point>& pointer = {});

/// The frame of a dashboard of that size: 4 points off the anchor, moved and cut only as far as
/// its screen's visible frame demands.
[[nodiscard]] Rect panelFrame(const PanelAnchor& anchor, Size contentSize);

}  // namespace nimbo
