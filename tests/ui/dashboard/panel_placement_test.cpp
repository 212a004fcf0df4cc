// SPDX-License-Identifier: MIT
#include "ui/dashboard/panel_placement.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

const Rect kFrame{0, 0, 1440, 900};
const Screen kBare{kFrame, kFrame};
const Screen kTop{kFrame, {0, 24, 1440, 876}};
const Screen kBottom{kFrame, {0, 0, 1440, 856}};
const Screen kLeft{kFrame, {48, 0, 1392, 900}};
const Screen kRight{kFrame, {0, 0, 1392, 900}};
const Screen kTopAndBottom{kFrame, {0, 24, 1440, 848}};

/// What a bar reports that knows where the pointer is: a small square around it.
Rect around(double x, double y) { return {x - 12, y - 12, 24, 24}; }

PanelAnchor anchorOf(const std::vector<Screen>& screens, const std::optional<Rect>& reported,
                     const std::optional<Point>& pointer = {}) {
  const auto anchor = panelAnchor(screens, reported, pointer);
  EXPECT_TRUE(anchor.has_value());
  return anchor.value_or(PanelAnchor{});
}

TEST(PanelAnchor, WithoutAScreenThereIsNone) {
  EXPECT_FALSE(panelAnchor({}, around(10, 10)).has_value());
  EXPECT_FALSE(panelAnchor({}, std::nullopt).has_value());
}

TEST(PanelAnchor, PlaceInATopPanelSpansIt) {
  EXPECT_EQ(anchorOf({kTop}, around(1000, 10)), (PanelAnchor{{988, 0, 24, 24}, ScreenEdge::top, kTop.visibleFrame}));
}

TEST(PanelAnchor, PlaceInABottomPanelSpansIt) {
  EXPECT_EQ(anchorOf({kBottom}, around(1000, 880)),
            (PanelAnchor{{988, 856, 24, 44}, ScreenEdge::bottom, kBottom.visibleFrame}));
}

TEST(PanelAnchor, PlaceInALeftPanelSpansIt) {
  EXPECT_EQ(anchorOf({kLeft}, around(20, 700)), (PanelAnchor{{0, 688, 48, 24}, ScreenEdge::left, kLeft.visibleFrame}));
}

TEST(PanelAnchor, PlaceInARightPanelSpansIt) {
  EXPECT_EQ(anchorOf({kRight}, around(1420, 700)),
            (PanelAnchor{{1392, 688, 48, 24}, ScreenEdge::right, kRight.visibleFrame}));
}

TEST(PanelAnchor, CornerOfAHorizontalAndAVerticalPanelBelongsToTheHorizontalOne) {
  const Screen screen{kFrame, {48, 24, 1392, 876}};
  EXPECT_EQ(anchorOf({screen}, around(1430, 10)).edge, ScreenEdge::top);
  const Screen withRight{kFrame, {0, 24, 1392, 876}};
  EXPECT_EQ(anchorOf({withRight}, around(1430, 10)).edge, ScreenEdge::top);
}

TEST(PanelAnchor, PlaceOutsideThePanelIsNotBelieved) {
  const PanelAnchor corner{{1440, 0, 0, 24}, ScreenEdge::top, kTop.visibleFrame, true};
  EXPECT_EQ(anchorOf({kTop}, around(700, 450)), corner);
  EXPECT_EQ(anchorOf({kTop}, around(700, 40)), corner);
  EXPECT_EQ(anchorOf({kTop}, around(700, 890)), corner);
  EXPECT_EQ(anchorOf({kTop}, around(5000, 10)), corner);
}

TEST(PanelAnchor, WithoutAReportTheEndOfThePanelIsTaken) {
  EXPECT_EQ(anchorOf({kTop}, {}), (PanelAnchor{{1440, 0, 0, 24}, ScreenEdge::top, kTop.visibleFrame}));
  EXPECT_EQ(anchorOf({kBottom}, {}), (PanelAnchor{{1440, 856, 0, 44}, ScreenEdge::bottom, kBottom.visibleFrame}));
  EXPECT_EQ(anchorOf({kLeft}, {}), (PanelAnchor{{0, 900, 48, 0}, ScreenEdge::left, kLeft.visibleFrame}));
  EXPECT_EQ(anchorOf({kRight}, {}), (PanelAnchor{{1392, 900, 48, 0}, ScreenEdge::right, kRight.visibleFrame}));
  EXPECT_EQ(anchorOf({kBare}, {}), (PanelAnchor{{1440, 0, 0, 0}, ScreenEdge::top, kFrame}));
}

TEST(PanelAnchor, OfSeveralPanelsTheTopOneIsTaken) {
  EXPECT_EQ(anchorOf({kTopAndBottom}, {}).edge, ScreenEdge::top);
  EXPECT_EQ(anchorOf({kTopAndBottom}, around(700, 450)).edge, ScreenEdge::top);
  EXPECT_EQ(anchorOf({kTopAndBottom}, around(700, 890)).edge, ScreenEdge::bottom);
}

TEST(PanelAnchor, WithoutReservedSpaceSixtyFourPointsAlongAnEdgeAreBelieved) {
  EXPECT_EQ(anchorOf({kBare}, around(1000, 14)), (PanelAnchor{{988, 2, 24, 24}, ScreenEdge::top, kFrame}));
  EXPECT_EQ(anchorOf({kBare}, around(1000, 880)), (PanelAnchor{{988, 868, 24, 24}, ScreenEdge::bottom, kFrame}));
  EXPECT_EQ(anchorOf({kBare}, around(20, 700)), (PanelAnchor{{8, 688, 24, 24}, ScreenEdge::left, kFrame}));
  EXPECT_EQ(anchorOf({kBare}, around(1420, 700)), (PanelAnchor{{1408, 688, 24, 24}, ScreenEdge::right, kFrame}));
}

TEST(PanelAnchor, WithoutReservedSpaceTheLimitIsSixtyFourPoints) {
  EXPECT_EQ(anchorOf({kBare}, around(1000, 63)).rect, around(1000, 63));
  EXPECT_EQ(anchorOf({kBare}, around(1000, 64)).rect, (Rect{1440, 0, 0, 0}));
}

TEST(PanelAnchor, WithoutReservedSpaceACornerBelongsToTheHorizontalEdge) {
  EXPECT_EQ(anchorOf({kBare}, around(1430, 14)).edge, ScreenEdge::top);
  EXPECT_EQ(anchorOf({kBare}, around(10, 890)).edge, ScreenEdge::bottom);
}

TEST(PanelAnchor, PlaceRelativeToTheItemIsNotTakenForTheScreensCorner) {
  EXPECT_EQ(anchorOf({kBare}, around(12, 14)).rect, (Rect{1440, 0, 0, 0}));
  EXPECT_EQ(anchorOf({kBottom}, around(12, 14)).rect, (Rect{1440, 856, 0, 44}));
  EXPECT_EQ(anchorOf({kRight}, around(12, 14)).rect, (Rect{1392, 900, 48, 0}));
  EXPECT_EQ(anchorOf({kTopAndBottom}, around(12, 14)).rect, (Rect{1440, 0, 0, 24}));
}

TEST(PanelAnchor, CornerIsBelievedWhenTheOnlyPanelRunsThere) {
  EXPECT_EQ(anchorOf({kTop}, around(12, 14)).rect, (Rect{0, 0, 24, 24}));
  EXPECT_EQ(anchorOf({kLeft}, around(12, 14)).rect, (Rect{0, 2, 48, 24}));
}

TEST(PanelAnchor, PointerInAPanelCountsInPlaceOfARelativeOne) {
  EXPECT_EQ(anchorOf({kTop}, around(36, 14), Point{1000, 10}).rect, (Rect{988, 0, 24, 24}));
  EXPECT_EQ(anchorOf({kBottom}, around(36, 14), Point{1000, 880}).rect, (Rect{988, 856, 24, 44}));
  EXPECT_EQ(anchorOf({kBare}, around(36, 14), Point{1000, 890}).edge, ScreenEdge::bottom);
  EXPECT_EQ(anchorOf({kTop}, around(36, 14), Point{700, 450}).rect, (Rect{24, 0, 24, 24})) << "it has moved on";
  EXPECT_EQ(anchorOf({kTop}, around(1000, 10), Point{700, 10}).rect, (Rect{988, 0, 24, 24})) << "not relative";
}

TEST(PanelAnchor, ScreenThatContainsThePlaceIsTaken) {
  const Screen second{{1440, 0, 1920, 1080}, {1440, 30, 1920, 1050}};
  EXPECT_EQ(anchorOf({kTop, second}, around(3000, 10)),
            (PanelAnchor{{2988, 0, 24, 30}, ScreenEdge::top, second.visibleFrame}));
  EXPECT_EQ(anchorOf({kTop, second}, around(1000, 10)).visibleFrame, kTop.visibleFrame);
}

TEST(PanelAnchor, UnbelievedPlaceStillChoosesItsScreen) {
  const Screen second{{1440, 0, 1920, 1080}, {1440, 0, 1920, 1080}};
  EXPECT_EQ(anchorOf({kTop, second}, around(2000, 500)),
            (PanelAnchor{{3360, 0, 0, 0}, ScreenEdge::top, second.visibleFrame, true}));
}

TEST(PanelAnchor, WithoutAPlaceTheScreenWithAPanelIsTaken) {
  const Screen second{{1440, 0, 1920, 1080}, {1440, 0, 1920, 1040}};
  EXPECT_EQ(anchorOf({kBare, second}, {}), (PanelAnchor{{3360, 1040, 0, 40}, ScreenEdge::bottom, second.visibleFrame}));
  EXPECT_EQ(anchorOf({kBare, second}, around(12, 14)).visibleFrame, second.visibleFrame);
}

TEST(PanelAnchor, ScreensLeftOfAndAboveThePrimaryOneHaveNegativeOrigins) {
  const Screen left{{-1920, -200, 1920, 1080}, {-1920, -170, 1920, 1050}};
  EXPECT_EQ(anchorOf({kBare, left}, around(-500, -190)),
            (PanelAnchor{{-512, -200, 24, 30}, ScreenEdge::top, left.visibleFrame}));
  const Screen bareLeft{{-1920, -200, 1920, 1080}, {-1920, -200, 1920, 1080}};
  EXPECT_EQ(anchorOf({kBare, bareLeft}, around(-500, -190)).rect, around(-500, -190));
}

TEST(PanelFrame, HangsFourPointsUnderTheAnchorWithTheirLeftEdgesInLine) {
  const PanelAnchor anchor{{500, 0, 24, 24}, ScreenEdge::top, kTop.visibleFrame};
  EXPECT_EQ(panelFrame(anchor, {340, 496}), (Rect{500, 28, 340, 496}));
}

TEST(PanelFrame, AnchorAtTheFarRightOfA1440PointScreenPutsA340PointPanelAt1100) {
  const PanelAnchor anchor{{1410, 0, 24, 24}, ScreenEdge::top, kTop.visibleFrame};
  EXPECT_EQ(panelFrame(anchor, {340, 496}), (Rect{1100, 28, 340, 496}));
}

TEST(PanelFrame, ContentTallerThanTheScreenIsCutWithItsTopOnScreen) {
  const PanelAnchor anchor{{500, 0, 24, 24}, ScreenEdge::top, kTop.visibleFrame};
  EXPECT_EQ(panelFrame(anchor, {340, 2000}), (Rect{500, 24, 340, 876}));
}

TEST(PanelFrame, ContentWiderThanTheScreenIsCut) {
  const PanelAnchor anchor{{500, 0, 24, 24}, ScreenEdge::top, {0, 24, 300, 876}};
  EXPECT_EQ(panelFrame(anchor, {340, 496}), (Rect{0, 28, 300, 496}));
}

TEST(PanelFrame, AlmostTooTallIsPushedUpNoFurtherThanNeeded) {
  const PanelAnchor anchor{{500, 0, 24, 24}, ScreenEdge::top, kTop.visibleFrame};
  EXPECT_EQ(panelFrame(anchor, {340, 874}), (Rect{500, 26, 340, 874}));
}

TEST(PanelFrame, StandsOnABottomPanel) {
  const PanelAnchor anchor{{1000, 856, 24, 44}, ScreenEdge::bottom, kBottom.visibleFrame};
  EXPECT_EQ(panelFrame(anchor, {340, 496}), (Rect{1000, 356, 340, 496}));
  EXPECT_EQ(panelFrame(anchor, {340, 2000}), (Rect{1000, 0, 340, 856}));
}

TEST(PanelFrame, StandsBesideAVerticalPanel) {
  const PanelAnchor left{{0, 688, 48, 24}, ScreenEdge::left, kLeft.visibleFrame};
  EXPECT_EQ(panelFrame(left, {340, 496}), (Rect{52, 404, 340, 496}));
  const PanelAnchor right{{1392, 100, 48, 24}, ScreenEdge::right, kRight.visibleFrame};
  EXPECT_EQ(panelFrame(right, {340, 496}), (Rect{1048, 100, 340, 496}));
}

TEST(PanelFrame, CornerAnchorsPutThePanelIntoTheScreensCorner) {
  EXPECT_EQ(panelFrame(anchorOf({kTop}, {}), {340, 496}), (Rect{1100, 28, 340, 496}));
  EXPECT_EQ(panelFrame(anchorOf({kBottom}, {}), {340, 496}), (Rect{1100, 356, 340, 496}));
  EXPECT_EQ(panelFrame(anchorOf({kLeft}, {}), {340, 496}), (Rect{52, 404, 340, 496}));
  EXPECT_EQ(panelFrame(anchorOf({kRight}, {}), {340, 496}), (Rect{1048, 404, 340, 496}));
  EXPECT_EQ(panelFrame(anchorOf({kBare}, {}), {340, 496}), (Rect{1100, 4, 340, 496}));
}

TEST(PanelFrame, StaysOnAScreenWithNegativeOrigin) {
  const PanelAnchor anchor{{-200, -200, 24, 30}, ScreenEdge::top, {-1920, -170, 1920, 1050}};
  EXPECT_EQ(panelFrame(anchor, {340, 496}), (Rect{-340, -166, 340, 496}));
}

}  // namespace
}  // namespace nimbo
