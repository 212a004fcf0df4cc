// SPDX-License-Identifier: MIT
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include "ui/controls/palette.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/paint_counter.h"
#include "ui/qt/qt_test.h"

namespace nimbo {
namespace {

class DashboardContentOnScreen : public DashboardTest {
 protected:
  static QRgb pixel(QPoint place) { return widget().grab().toImage().pixel(place); }
};

TEST_F(DashboardContentOnScreen, LabelsShowTheirTexts) {
  open();
  EXPECT_EQ(text("title"), "Nimbo");
  EXPECT_EQ(text("hero"), "70%");
  EXPECT_EQ(text("subtitle"), "11.2 GB of 16.0 GB used");
  EXPECT_EQ(text("pressure"), "● Normal pressure");
  EXPECT_EQ(text("row0"), "App memory");
  EXPECT_EQ(text("value0"), "7.4 GB");
  EXPECT_EQ(text("row4"), "Swap used");
  EXPECT_EQ(text("value4"), "0.6 GB");
  EXPECT_EQ(text("cpu"), "CPU  23% utilized");
  EXPECT_EQ(text("temperature"), "CPU temperature  58°C · hottest sensor");
  EXPECT_EQ(text("processTitle"), "TOP 13 PROCESSES");
  EXPECT_EQ(text("footer"), "Updates every 5s");
}

TEST_F(DashboardContentOnScreen, FramesAreTakenOver) {
  EXPECT_EQ(child("hero").geometry(), QRect(18, 55, 302, 48));
  EXPECT_EQ(child("history").geometry(), QRect(20, 146, 300, 56));
  EXPECT_EQ(child("tabs").geometry(), QRect(70, 17, 218, 26));
  EXPECT_EQ(child("activity").geometry().size(), QSize(130, 22));
}

TEST_F(DashboardContentOnScreen, TabsShowOrderAndSelection) {
  auto& tabs = child<QTabBar>("tabs");
  ASSERT_EQ(tabs.count(), 3);
  EXPECT_EQ(tabs.tabText(0), "AI");
  EXPECT_EQ(tabs.tabText(2), "Awake");
  EXPECT_EQ(tabs.currentIndex(), 1);

  auto content = controller_.content();
  content.tabs.labels = {"Mem", "AI"};
  content.tabs.selected = 0;
  window_->render(content);
  ASSERT_EQ(tabs.count(), 2);
  EXPECT_EQ(tabs.tabText(0), "Mem");
  EXPECT_EQ(tabs.currentIndex(), 0);
  EXPECT_EQ(log_, std::vector<std::string>{}) << "the program's own changes are not the user's";
}

TEST_F(DashboardContentOnScreen, OtherTabHidesThePage) {
  open();
  controller_.open(DashboardTab::ai);
  render();
  for (const char* name : {"hero", "history", "breakdown", "row2", "processes", "more", "less", "activity", "footer"}) {
    EXPECT_FALSE(child(name).isVisible()) << name;
  }
  EXPECT_TRUE(child("title").isVisible());
  EXPECT_TRUE(child<QAbstractButton>("quit").isVisible());
  controller_.open(DashboardTab::memory);
  render();
  EXPECT_TRUE(child("hero").isVisible());
}

TEST_F(DashboardContentOnScreen, DisabledButtonCannotBePressed) {
  open();
  controller_.setActivityMonitorEnabled(false);
  controller_.showProcesses(sampleProcesses(8));
  render();
  EXPECT_FALSE(child("more").isEnabled());
  click("more");
  click("activity");
  EXPECT_EQ(log_, std::vector<std::string>{});
}

TEST_F(DashboardContentOnScreen, EveryControlCallsItsAction) {
  open();
  click("settings");
  click("less");
  click("more");
  click("activity");
  click("quit");
  auto& tabs = child<QTabBar>("tabs");
  click(tabs.mapTo(&widget(), tabs.tabRect(2).center()));
  EXPECT_EQ(log_, (std::vector<std::string>{"settings", "less", "more", "activity", "quit", "tabs 2"}));
}

TEST_F(DashboardContentOnScreen, OnlyWhatDiffersIsPainted) {
  open();
  PaintCounter counter(widget());
  ASSERT_TRUE(counter.settles());
  render();
  QCoreApplication::processEvents();
  EXPECT_TRUE(counter.counts.empty()) << counter.counts.begin()->first;

  auto content = controller_.content();
  std::get<ResourcesContent>(content.page).hero.text = "71%";
  window_->render(content);
  ASSERT_TRUE(QTest::qWaitFor([&] { return counter.counts["hero"] == 1; }));
  counter.counts.erase("hero");
  counter.counts.erase("page");  // the hero's ground
  EXPECT_TRUE(counter.counts.empty()) << counter.counts.begin()->first;
}

TEST_F(DashboardContentOnScreen, ProcessRowsGrowShrinkAndKeepTheirPlace) {
  open();
  auto& area = child<QScrollArea>("processes");
  EXPECT_EQ(area.findChildren<QLabel*>().size(), 26);
  EXPECT_EQ(area.widget()->height(), 13 * 29);
  area.verticalScrollBar()->setValue(60);

  controller_.showProcesses(sampleProcesses(39));
  render();
  EXPECT_EQ(area.verticalScrollBar()->value(), 60);

  controller_.showProcesses({});
  render();
  ASSERT_EQ(area.findChildren<QLabel*>().size(), 1);
  EXPECT_EQ(area.findChildren<QLabel*>()[0]->text(), "No readable processes yet");
}

TEST_F(DashboardContentOnScreen, ToolTipsAreNeverMarkup) {
  auto scan = sampleProcesses(1);
  scan.processes[0].name = "<img src=x>&";
  controller_.showProcesses(scan);
  render();
  const auto* const name = child<QScrollArea>("processes").findChildren<QLabel*>()[0];
  EXPECT_EQ(name->text(), "<img src=x>&");
  EXPECT_EQ(name->textFormat(), Qt::PlainText);
  EXPECT_TRUE(name->toolTip().contains("&lt;img src=x&gt;&amp; · PID 1200")) << name->toolTip().toStdString();
  EXPECT_EQ(name->accessibleDescription(), "<img src=x>& · PID 1200");
}

TEST_F(DashboardContentOnScreen, NoTextIsWiderThanItsFrameInAnyFont) {
  open();
  const QFont before = QApplication::font();
  for (const char* const family : {"Noto Sans", "DejaVu Sans", "DejaVu Sans Mono"}) {
    QApplication::setFont(QFont(family));
    QCoreApplication::processEvents();
    const auto labels = widget().findChildren<QLabel*>();
    ASSERT_GT(labels.size(), 20);
    for (const QLabel* const label : labels) {
      for (const auto& line : static_cast<const FittedLabel*>(label)->lines()) {
        EXPECT_EQ(line.font.family().toStdString(), family);
        EXPECT_LE(textWidth(line.text, line.font, line.monospacedDigits), label->width())
            << family << ": " << label->text().toStdString();
      }
    }
  }
  QApplication::setFont(before);
}

TEST_F(DashboardContentOnScreen, ChartsAreDrawnWhereTheyBelong) {
  open();
  EXPECT_EQ(pixel({20 + 297, 146 + 50}), rgb(color(ColorRole::teal, Appearance::light))) << "newest sample";
  EXPECT_EQ(pixel({20 + 10, 247}), rgb(color(ColorRole::teal, Appearance::light)));
  EXPECT_EQ(pixel({20 + 160, 247}), rgb(color(ColorRole::indigo, Appearance::light)));
  EXPECT_EQ(pixel({20 + 200, 247}), rgb(color(ColorRole::orangeFill, Appearance::light)));
}

TEST_F(DashboardContentOnScreen, AppearanceChangesEveryColour) {
  open();
  EXPECT_EQ(pixel({30, 700}), rgb(color(ColorRole::background, Appearance::light)));
  interface().setAppearance(Appearance::dark);
  EXPECT_EQ(pixel({30, 700}), rgb(color(ColorRole::background, Appearance::dark)));
  EXPECT_EQ(pixel({20 + 10, 247}), rgb(color(ColorRole::teal, Appearance::dark)));
  EXPECT_EQ(QApplication::palette().color(QPalette::ToolTipBase).rgb(),
            rgb(color(ColorRole::background, Appearance::dark)));
}

TEST_F(DashboardContentOnScreen, CornersAreTransparent) {
  open();
  const QImage image = widget().grab().toImage();
  EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
  EXPECT_EQ(qAlpha(image.pixel(image.width() - 1, image.height() - 1)), 0);
  EXPECT_EQ(qAlpha(image.pixel(30, 30)), 255);
}

TEST_F(DashboardContentOnScreen, SettingsButtonShowsAGear) {
  open();
  const QRect frame = child("settings").geometry();
  const QImage image = widget().grab(frame).toImage();
  int ink = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x)
      ink += image.pixel(x, y) != rgb(color(ColorRole::background, Appearance::light));
  }
  EXPECT_GT(ink, 60);
  EXPECT_LT(ink, 300);
  // Upright and the same on both sides.
  EXPECT_EQ(image.pixel(14, 7), image.pixel(13, 7));
}

}  // namespace
}  // namespace nimbo
