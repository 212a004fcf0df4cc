// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/dashboard_page.h"

#include <QPainter>
#include <utility>

#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {

FittedLabel* DashboardPage::makeLabel(const char* name) {
  auto* const label = new FittedLabel(theme_, this);
  label->setObjectName(name);
  return label;
}

DashboardButton* DashboardPage::makeButton(std::function<void()> DashboardActions::*action) {
  return new DashboardButton(
      theme_,
      [this, action] {
        // A copy, because the action may give this page other actions.
        if (const auto act = actions_.*action) act();
      },
      this);
}

DashboardPage::DashboardPage(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      title_(makeLabel("title")),
      tabs_(new SegmentedTabs(
          theme,
          [this](std::size_t index) {
            if (const auto select = actions_.selectTab) select(index);
          },
          this)),
      settingsButton_(makeButton(&DashboardActions::openSettings)),
      hero_(makeLabel("hero")),
      subtitle_(makeLabel("subtitle")),
      history_(new HistoryWidget(theme, this)),
      pressure_(makeLabel("pressure")),
      time_(makeLabel("time")),
      breakdown_(new BreakdownWidget(theme, this)),
      rows_{{{makeLabel("row0"), makeLabel("value0")},
             {makeLabel("row1"), makeLabel("value1")},
             {makeLabel("row2"), makeLabel("value2")},
             {makeLabel("row3"), makeLabel("value3")},
             {makeLabel("row4"), makeLabel("value4")}}},
      cpu_(makeLabel("cpu")),
      temperature_(makeLabel("temperature")),
      processTitle_(makeLabel("processTitle")),
      lessButton_(makeButton(&DashboardActions::showLess)),
      moreButton_(makeButton(&DashboardActions::showMore)),
      processes_(new ProcessListWidget(theme, this)),
      processNote_(makeLabel("processNote")),
      activityButton_(makeButton(&DashboardActions::openActivityMonitor)),
      footer_(makeLabel("footer")),
      awake_(theme, *this),
      usage_(theme, *this),
      quitButton_(makeButton(&DashboardActions::quit)),
      quitHint_(makeLabel("quitHint")) {
  setObjectName("page");
  tabs_->setObjectName("tabs");
  tabs_->setAccessibleName("Pages");
  history_->setObjectName("history");
  breakdown_->setObjectName("breakdown");
  processes_->setObjectName("processes");
}

void DashboardPage::setActions(DashboardActions actions) {
  awake_.setActions(std::move(actions.awake));
  usage_.setActions(std::move(actions.usage));
  actions_ = std::move(actions);
}

void DashboardPage::render(const DashboardContent& content) {
  title_->setContent(content.title);
  tabs_->setContent(content.tabs);
  settingsButton_->setContent(content.settingsButton);
  hero_->setContent(content.hero);
  subtitle_->setContent(content.subtitle);
  history_->setContent(content.history);
  pressure_->setContent(content.pressure);
  time_->setContent(content.time);
  breakdown_->setContent(content.breakdown);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    rows_[row].title->setContent(content.rows[row].title);
    rows_[row].value->setContent(content.rows[row].value);
  }
  cpu_->setContent(content.cpu);
  temperature_->setContent(content.temperature);
  processTitle_->setContent(content.processTitle);
  lessButton_->setContent(content.lessButton);
  moreButton_->setContent(content.moreButton);
  processes_->setContent(content.processes);
  processes_->setAccessibleName(processTitle_->text());
  processNote_->setContent(content.processNote);
  activityButton_->setContent(content.activityButton);
  footer_->setContent(content.footer);
  awake_.render(content.awake);
  usage_.render(content.usage);
  quitButton_->setContent(content.quitButton);
  quitHint_->setContent(content.quitHint);
  if (std::exchange(footerSeparator_, content.footerSeparator) != content.footerSeparator) update();
  resize(qRound(content.size.width), qRound(content.size.height));
}

bool DashboardPage::performKeyEquivalent(const QKeyEvent& key) {
  for (auto* const button : {settingsButton_, lessButton_, moreButton_, activityButton_, quitButton_}) {
    if (button->performKeyEquivalent(key)) return true;
  }
  return awake_.performKeyEquivalent(key);
}

void DashboardPage::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(toQRectF(footerSeparator_), theme_.separator());
  painter.setRenderHint(QPainter::Antialiasing);
  const auto drawRingAround = [&](const ScrollArea& view, const QMargins& room) {
    if (keyboardFocusVisible(view)) drawFocusRing(painter, view.geometry() + room, 6, theme_);
  };
  drawRingAround(*processes_, {8, 0, 8, 0});
  drawRingAround(usage_.scroll(), {8, 6, 8, 6});  // its cards reach to its edges
}

}  // namespace nimbo
