// SPDX-License-Identifier: MIT
#include <QRegularExpression>
#include <QScrollBar>

#include "ui/controls/palette.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/paint_counter.h"
#include "usage/usage_messages.h"
#include "usage_page_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Log = std::vector<std::string>;

class UsagePageOnScreen : public UsagePageTest {
 protected:
  /// The colour in the middle of a bar's height.
  static QRgb barPixel(ChartWidget& bar, int x) {
    return widget().grab().toImage().pixel(bar.mapTo(&widget(), QPoint(x, 3)));
  }
  static qsizetype cards() { return child("usage").findChildren<QWidget*>(QRegularExpression("^usageCard\\.")).size(); }
  /// One card less than the program shows.
  void renderClaudeOnly() {
    auto content = controller_.content();
    auto& cards = std::get<UsageContent>(content.page).cards;
    cards.erase(cards.begin());
    window_->render(content);
  }
  static QRect onDashboard(const QWidget& part) { return {part.mapTo(&widget(), QPoint()), part.size()}; }
};

TEST_F(UsagePageOnScreen, EachCardShowsItsProvider) {
  EXPECT_EQ(textOf(card(kCodex), "usageCardTitle"), "OpenAI · Codex");
  EXPECT_EQ(status(kCodex), "Updated 09:24");
  EXPECT_EQ(textOf(card(kClaude), "usageCardTitle"), "Anthropic · Claude");
  EXPECT_EQ(status(kClaude), "Updated 09:24 · Claude Code");
  EXPECT_FALSE(child("connect.codex").isVisible());
  EXPECT_EQ(text("usageNote"), "Updates every 5 minutes · hover for countdowns");
  EXPECT_EQ(text("usageProgress"), "");
}

TEST_F(UsagePageOnScreen, EachRowShowsItsWindow) {
  ASSERT_EQ(rows(kCodex).size(), 2);
  QWidget& row = *rows(kCodex)[1];
  EXPECT_EQ(textOf(row, "usageRowTitle"), "Weekly");
  EXPECT_EQ(textOf(row, "usageRowAmount"), "39% left");
  EXPECT_EQ(textOf(row, "usageRowReset"), "Resets Mar 17, 2026 12:26");
  ASSERT_EQ(rows(kClaude).size(), 3);
  EXPECT_EQ(textOf(*rows(kClaude)[2], "usageRowReset"), "Reset time unavailable");
}

TEST_F(UsagePageOnScreen, FramesAreTakenOver) {
  EXPECT_EQ(onDashboard(child("usage")), QRect(20, 62, 306, 371));
  EXPECT_EQ(onDashboard(card(kCodex)), QRect(20, 62, 300, 179));
  EXPECT_EQ(card(kClaude).geometry(), QRect(0, 189, 300, 237));
  EXPECT_EQ(rows(kClaude)[0]->geometry(), QRect(12, 58, 276, 52));
  EXPECT_EQ(rows(kClaude)[2]->geometry().y(), 174);
  EXPECT_EQ(onDashboard(bar(kCodex, 0)), QRect(32, 62 + 58 + 24, 276, 7));
  EXPECT_EQ(onDashboard(child("link.codex")), QRect(283, 72, 26, 24));
  EXPECT_EQ(onDashboard(child("refresh")), QRect(16, 444, 95, 28));
}

TEST_F(UsagePageOnScreen, EveryControlCallsItsAction) {
  click("link.codex");
  click("link.claude");
  click("refresh");
  click("configure");
  show({});
  click("connect.codex");
  click("connect.claude");
  EXPECT_EQ(log_, (Log{"link.codex", "link.claude", "refresh", "configure", "connect.codex", "connect.claude"}));
}

TEST_F(UsagePageOnScreen, OtherTabHidesEverything) {
  controller_.open(DashboardTab::memory);
  for (const char* const name : {"usage", "usageCard.codex", "usageCard.claude", "link.codex", "refresh",
                                 "usageProgress", "configure", "usageNote"}) {
    EXPECT_FALSE(child(name).isVisible()) << name;
  }
  controller_.open(DashboardTab::ai);
  EXPECT_TRUE(child("usageCard.claude").isVisible());
  EXPECT_TRUE(child("usageNote").isVisible());
}

TEST_F(UsagePageOnScreen, RowsGrowAndShrinkWhereTheyStand) {
  QWidget* const first = rows(kCodex)[0];
  showCodex(connectedState({sampleWindow("5-hour", 40), sampleWindow("Weekly", 1), sampleWindow("Daily", 2)}, now()));
  ASSERT_EQ(rows(kCodex).size(), 3);
  EXPECT_EQ(rows(kCodex)[0], first);
  EXPECT_TRUE(rows(kCodex)[2]->isVisible());
  EXPECT_EQ(textOf(*first, "usageRowAmount"), "60% left");
  EXPECT_EQ(card(kCodex).height(), 237);
  EXPECT_EQ(card(kClaude).y(), 247);

  showCodex(connectedState({sampleWindow("Weekly", 1)}, now()));
  ASSERT_EQ(rows(kCodex).size(), 1);
  EXPECT_EQ(textOf(*rows(kCodex)[0], "usageRowTitle"), "Weekly");
  showCodex({});
  EXPECT_TRUE(rows(kCodex).empty());
  EXPECT_EQ(card(kCodex).height(), 110);
}

TEST_F(UsagePageOnScreen, CardsKeepTheirWidgetsWhenTheyChangePlaces) {
  const QWidget* const codex = &card(kCodex);
  showClaudeFirst();
  EXPECT_EQ(&card(kCodex), codex);
  EXPECT_EQ(card(kClaude).y(), 0);
  EXPECT_EQ(card(kCodex).y(), 247);
  EXPECT_EQ(tabStops(7), (Log{"tabs", "settings", "usage", "link.claude", "link.codex", "refresh", "configure"}));
}

TEST_F(UsagePageOnScreen, CardMayGoAndComeBack) {
  renderClaudeOnly();
  EXPECT_EQ(cards(), 1);
  EXPECT_TRUE(QTest::qWaitFor([] { return widget().findChild<QWidget*>("link.codex") == nullptr; }));
  render();
  EXPECT_TRUE(card(kCodex).isVisible());
  EXPECT_EQ(tabStops(5), (Log{"tabs", "settings", "usage", "link.codex", "link.claude"}));
}

TEST_F(UsagePageOnScreen, CardMayGoThroughItsOwnButton) {
  window_->setListener([this](const ControlEvent& /*event*/) {
    renderClaudeOnly();
    window_->setListener({});
  });
  click("link.codex");
  EXPECT_EQ(cards(), 1);
  EXPECT_TRUE(QTest::qWaitFor([] { return widget().findChild<QWidget*>("link.codex") == nullptr; }));
  click("link.claude");
  EXPECT_TRUE(card(kClaude).isVisible()) << "without an action nothing happens";
}

TEST_F(UsagePageOnScreen, OnlyWhatDiffersIsPainted) {
  PaintCounter counter(widget());
  ASSERT_TRUE(counter.settles());
  show(sampleUsage(now()));
  QCoreApplication::processEvents();
  EXPECT_TRUE(counter.counts.empty()) << counter.counts.begin()->first;

  auto states = sampleUsage(now());
  states[kCodex].snapshot->fetchedAt = now();
  show(states);
  ASSERT_TRUE(QTest::qWaitFor([&] { return counter.counts["usageCardStatus"] == 1; }));
  EXPECT_EQ(counter.counts["refresh"], 0);
  EXPECT_EQ(counter.counts["usageCard.claude"], 0);
  EXPECT_EQ(counter.counts["usageNote"], 0);
}

TEST_F(UsagePageOnScreen, PlaceScrolledToHoldsAcrossARefresh) {
  auto& bar = *child<ScrollArea>("usage").verticalScrollBar();
  bar.setValue(40);
  showCodex(connectedState({sampleWindow("5-hour", 90), sampleWindow("Weekly", 80)}, now()));
  EXPECT_EQ(bar.value(), 40);
}

TEST_F(UsagePageOnScreen, BarIsFilledFromTheLeftByWhatIsLeft) {
  auto& used38 = bar(kCodex, 0);
  EXPECT_EQ(barPixel(used38, 100), rgb(color(ColorRole::teal, Appearance::light)));
  EXPECT_EQ(barPixel(used38, 170), rgb(color(ColorRole::teal, Appearance::light)));
  EXPECT_NE(barPixel(used38, 172), rgb(color(ColorRole::teal, Appearance::light)));
  EXPECT_EQ(barPixel(bar(kClaude, 0), 20), rgb(color(ColorRole::orangeFill, Appearance::light)));
}

TEST_F(UsagePageOnScreen, EmptyBarIsATrackThatCanBeSeen) {
  showCodex(connectedState({sampleWindow("5-hour", 100)}, now()));
  auto& empty = bar(kCodex, 0);
  EXPECT_EQ(barPixel(empty, 5), barPixel(empty, 270));
  EXPECT_NE(barPixel(empty, 5), rgb(color(ColorRole::cardGround, Appearance::light)));
}

TEST_F(UsagePageOnScreen, StaleBarIsPaleAndItsStatusSaysLastKnown) {
  auto states = sampleUsage(now());
  states[kCodex].message = usage_messages::kProviderUnreachable;
  const QRgb fresh = barPixel(bar(kCodex, 0), 10);
  show(states);
  EXPECT_GT(qGray(barPixel(bar(kCodex, 0), 10)), qGray(fresh) + 30);
  EXPECT_EQ(status(kCodex), std::string("Last known · ") + usage_messages::kProviderUnreachable);
}

TEST_F(UsagePageOnScreen, CardsStandOutInBothAppearances) {
  for (const auto appearance : {Appearance::light, Appearance::dark}) {
    interface().setAppearance(appearance);
    const QImage image = widget().grab().toImage();
    EXPECT_NE(image.pixel(30, 70), rgb(color(ColorRole::background, appearance))) << "in the card";
    EXPECT_EQ(image.pixel(30, 62 + 179 + 5), rgb(color(ColorRole::background, appearance))) << "between the cards";
    EXPECT_EQ(image.pixel(20, 62), rgb(color(ColorRole::background, appearance))) << "the card's round corner";
  }
}

TEST_F(UsagePageOnScreen, LinkIsAnArrowOnACircleInAnyFont) {
  const QImage image = widget().grab(onDashboard(child("link.codex"))).toImage();
  const QRgb ground = image.pixel(13, 3);
  EXPECT_EQ(image.pixel(0, 12), image.pixel(25, 12)) << "beside the circle";
  EXPECT_NE(ground, image.pixel(0, 12));
  EXPECT_NE(image.pixel(13, 12), ground) << "the shaft";
  EXPECT_EQ(image.pixel(9, 8), ground);
  EXPECT_EQ(image.pixel(17, 16), ground);
}

TEST_F(UsagePageOnScreen, ToolTipOfARowHoldsBetweenItsParts) {
  QWidget& row = *rows(kCodex)[0];
  EXPECT_EQ(row.childAt(100, 22), nullptr) << "a gap";
  EXPECT_EQ(row.accessibleDescription(),
            "5-hour · 62% left · Resets in 2h 13m\nResets Mar 14, 2026 11:39\nUpdated 09:24");
  for (const QWidget* const each : row.findChildren<QWidget*>()) EXPECT_EQ(each->toolTip(), row.toolTip());
  EXPECT_EQ(row.toolTip().count("<br>"), 2);
}

TEST_F(UsagePageOnScreen, MessagesAreNeverMarkup) {
  showCodex(failedState("<b>no</b> & never"));
  const auto& label = part<QLabel>(card(kCodex), "usageCardStatus");
  EXPECT_EQ(label.text(), "<b>no</b> & never");
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  EXPECT_TRUE(label.toolTip().contains("&lt;b&gt;no&lt;/b&gt; &amp; never"));
}

TEST_F(UsagePageOnScreen, LongMessageTakesTwoLinesAndStaysWholeForScreenReaders) {
  const auto& label = part<FittedLabel>(card(kCodex), "usageCardStatus");
  showCodex(failedState(usage_messages::kDesktopUnavailable));
  EXPECT_EQ(label.lines().size(), 1U);

  showCodex(failedState(usage_messages::kNoCodexCredentials));
  ASSERT_EQ(label.lines().size(), 2U);
  EXPECT_EQ(label.lines()[0].text + ' ' + label.lines()[1].text, usage_messages::kNoCodexCredentials);

  const std::string both =
      std::string(usage_messages::kClaudeCodeGaveNoUsage) + ' ' + usage_messages::kDesktopUsageNotShown;
  showCodex(failedState(both));
  EXPECT_EQ(label.lines().size(), 2U);
  EXPECT_EQ(label.text().toStdString(), both);
  EXPECT_EQ(label.accessibleDescription().toStdString(), both);
}

TEST_F(UsagePageOnScreen, NoTextIsWiderThanItsFrameInAnyFont) {
  const QFont before = QApplication::font();
  for (const char* const family : {"Noto Sans", "DejaVu Sans", "DejaVu Sans Mono"}) {
    QApplication::setFont(QFont(family));
    QCoreApplication::processEvents();
    auto labels = child("usage").findChildren<FittedLabel*>();
    labels.push_back(&child<FittedLabel>("usageNote"));
    ASSERT_EQ(labels.size(), 2 * 2 + 5 * 3 + 1);
    for (const FittedLabel* const label : labels) {
      for (const auto& line : label->lines()) {
        EXPECT_LE(textWidth(line.text, line.font, line.monospacedDigits), label->width())
            << family << ": " << label->text().toStdString();
      }
    }
    EXPECT_EQ(part<FittedLabel>(*rows(kClaude)[2], "usageRowReset").lines()[0].text, "Reset time unavailable");
  }
  QApplication::setFont(before);
}

}  // namespace
}  // namespace nimbo
