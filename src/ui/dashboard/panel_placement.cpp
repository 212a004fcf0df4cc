// SPDX-License-Identifier: MIT
#include "ui/dashboard/panel_placement.h"

#include <algorithm>
#include <array>

namespace nimbo {
namespace {

/// The thickest panel that is looked for where none reserves space.
constexpr double kPanelReach = 64;

// The order in which edges are looked at: items live in the top panel where there are several.
constexpr std::array kEdges{ScreenEdge::top, ScreenEdge::bottom, ScreenEdge::right, ScreenEdge::left};

/// The part of `frame` along an edge that `inner` leaves free.
Rect strip(const Rect& frame, const Rect& inner, ScreenEdge edge) {
  switch (edge) {
    case ScreenEdge::top:
      return {frame.x, frame.y, frame.width, inner.y - frame.y};
    case ScreenEdge::bottom:
      return {frame.x, inner.maxY(), frame.width, frame.maxY() - inner.maxY()};
    case ScreenEdge::left:
      return {frame.x, frame.y, inner.x - frame.x, frame.height};
    case ScreenEdge::right:
      return {inner.maxX(), frame.y, frame.maxX() - inner.maxX(), frame.height};
  }
  return {};
}

bool exists(const Rect& strip) { return strip.width > 0 && strip.height > 0; }

std::optional<ScreenEdge> panelEdge(const Screen& screen) {
  for (const auto edge : kEdges) {
    if (exists(strip(screen.frame, screen.visibleFrame, edge))) return edge;
  }
  return std::nullopt;
}

std::size_t panelCount(const std::vector<Screen>& screens) {
  std::size_t count = 0;
  for (const auto& screen : screens) {
    for (const auto edge : kEdges) count += exists(strip(screen.frame, screen.visibleFrame, edge)) ? 1 : 0;
  }
  return count;
}

Point center(const Rect& rect) { return {rect.x + rect.width / 2, rect.y + rect.height / 2}; }

/// Some bars report where in the item the pointer is; that looks like the corner of the first screen.
bool maybeRelative(Point place) { return Rect{0, 0, kPanelReach, kPanelReach}.contains(place); }

const Screen* screenAt(const std::vector<Screen>& screens, Point point) {
  const auto found =
      std::find_if(screens.begin(), screens.end(), [&](const Screen& screen) { return screen.frame.contains(point); });
  return found == screens.end() ? nullptr : &*found;
}

/// `rect` stretched across the strip that it lies in.
Rect spanning(const Rect& strip, const Rect& rect, ScreenEdge edge) {
  const bool horizontal = edge == ScreenEdge::top || edge == ScreenEdge::bottom;
  return horizontal ? Rect{rect.x, strip.y, rect.width, strip.height} : Rect{strip.x, rect.y, strip.width, rect.height};
}

std::optional<PanelAnchor> anchorInPanel(const Screen& screen, const Rect& reported) {
  for (const auto edge : kEdges) {
    const Rect area = strip(screen.frame, screen.visibleFrame, edge);
    if (!exists(area) || !area.contains(center(reported))) continue;
    return PanelAnchor{spanning(area, reported, edge), edge, screen.visibleFrame};
  }
  return std::nullopt;
}

std::optional<PanelAnchor> anchorNearEdge(const Screen& screen, const Rect& reported) {
  const Rect& frame = screen.frame;
  const Rect inner{frame.x + kPanelReach, frame.y + kPanelReach, frame.width - 2 * kPanelReach,
                   frame.height - 2 * kPanelReach};
  for (const auto edge : kEdges) {
    if (!strip(frame, inner, edge).contains(center(reported))) continue;
    return PanelAnchor{reported, edge, screen.visibleFrame};
  }
  return std::nullopt;
}

std::optional<PanelAnchor> anchorAt(const std::vector<Screen>& screens, const Rect& place) {
  const Screen* const screen = screenAt(screens, center(place));
  if (screen == nullptr) return std::nullopt;
  return panelEdge(*screen) ? anchorInPanel(*screen, place) : anchorNearEdge(*screen, place);
}

std::optional<PanelAnchor> trustedAnchor(const std::vector<Screen>& screens, const Rect& reported,
                                         const std::optional<Point>& pointer) {
  const auto anchor = anchorAt(screens, reported);
  if (anchor && !maybeRelative(center(reported))) return anchor;
  if (pointer) {
    const Rect there{pointer->x - reported.width / 2, pointer->y - reported.height / 2, reported.width,
                     reported.height};
    if (const auto found = anchorAt(screens, there)) return found;
  }
  const Screen* const screen = screenAt(screens, center(reported));
  const bool onlyPanel = screen != nullptr && panelEdge(*screen) && panelCount(screens) == 1;
  return onlyPanel ? anchor : std::nullopt;
}

/// The end of the screen's panel where items usually are.
PanelAnchor cornerAnchor(const Screen& screen) {
  const Rect& visible = screen.visibleFrame;
  const auto edge = panelEdge(screen);
  if (!edge) return {{visible.maxX(), visible.y, 0, 0}, ScreenEdge::top, visible};
  const Rect area = strip(screen.frame, visible, *edge);
  return {spanning(area, {visible.maxX(), visible.maxY(), 0, 0}, *edge), *edge, visible};
}

/// The screen that the reported place is on, even where that place is no use otherwise; else one with a panel.
const Screen& likelyScreen(const std::vector<Screen>& screens, const std::optional<Rect>& reported) {
  if (reported && !maybeRelative(center(*reported))) {
    if (const Screen* screen = screenAt(screens, center(*reported))) return *screen;
  }
  const auto found = std::find_if(screens.begin(), screens.end(), panelEdge);
  return found == screens.end() ? screens.front() : *found;
}

double clamped(double value, double low, double high) { return std::max(low, std::min(value, high)); }

}  // namespace

std::optional<PanelAnchor> panelAnchor(const std::vector<Screen>& screens, const std::optional<Rect>& reported,
                                       const std::optional<Point>& pointer) {
  if (screens.empty()) return std::nullopt;
  if (reported) {
    if (const auto anchor = trustedAnchor(screens, *reported, pointer)) return anchor;
  }
  auto anchor = cornerAnchor(likelyScreen(screens, reported));
  anchor.guessed = reported.has_value();
  return anchor;
}

Rect panelFrame(const PanelAnchor& anchor, Size contentSize) {
  const Rect& visible = anchor.visibleFrame;
  const double width = std::min(contentSize.width, visible.width);
  const double height = std::min(contentSize.height, visible.height);
  double x = anchor.rect.x;
  double y = anchor.rect.y;
  switch (anchor.edge) {
    case ScreenEdge::top:
      y = anchor.rect.maxY() + kGapToPanel;
      break;
    case ScreenEdge::bottom:
      y = anchor.rect.y - height - kGapToPanel;
      break;
    case ScreenEdge::left:
      x = anchor.rect.maxX() + kGapToPanel;
      break;
    case ScreenEdge::right:
      x = anchor.rect.x - width - kGapToPanel;
      break;
  }
  return {clamped(x, visible.x, visible.maxX() - width), clamped(y, visible.y, visible.maxY() - height), width, height};
}

}  // namespace nimbo
