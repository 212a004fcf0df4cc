// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/dashboard_page.h"

#include <array>
#include <utility>

#include "ui/qt/controls/check_box.h"
#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/date_picker.h"
#include "ui/qt/controls/pop_up_button.h"
#include "ui/qt/controls/segmented_tabs.h"
#include "ui/qt/controls/text_field.h"
#include "ui/qt/dashboard/chart_widget.h"

namespace nimbo {
namespace {

using Content = DashboardContent;
using Actions = DashboardActions;

constexpr std::array kRowNames{"row0", "row1", "row2", "row3", "row4"};
constexpr std::array kValueNames{"value0", "value1", "value2", "value3", "value4"};

}  // namespace

DashboardPage::DashboardPage(const Theme& theme, QWidget* parent)
    : QWidget(parent), theme_(theme), controls_(theme, *this), awake_(theme, *this) {
  setObjectName("page");
  controls_.label("title", &Content::title);
  controls_.control<SegmentedTabs>(&Content::tabs, &Actions::selectTab);
  controls_.control<DashboardButton>(&Content::settingsButton, &Actions::openSettings);
  addResources();
  controls_.label("footer", &Content::footer);
  addKeepAwake();
  usage_.emplace(theme, *this);
  controls_.control<DashboardButton>(&Content::quitButton, &Actions::quit);
  controls_.label("quitHint", &Content::quitHint);
}

void DashboardPage::addResources() {
  controls_.label("hero", &Content::hero);
  controls_.label("subtitle", &Content::subtitle);
  controls_.bind(&Content::history, new HistoryWidget(theme_, this))->setObjectName("history");
  controls_.label("pressure", &Content::pressure);
  controls_.label("time", &Content::time);
  controls_.bind(&Content::breakdown, new BreakdownWidget(theme_, this))->setObjectName("breakdown");
  for (std::size_t row = 0; row < kRowNames.size(); ++row) {
    controls_.label(kRowNames.at(row), [row](const Content& content) { return content.rows.at(row).title; });
    controls_.label(kValueNames.at(row), [row](const Content& content) { return content.rows.at(row).value; });
  }
  controls_.label("cpu", &Content::cpu);
  controls_.label("temperature", &Content::temperature);
  controls_.label("processTitle", &Content::processTitle);
  controls_.control<DashboardButton>(&Content::lessButton, &Actions::showLess);
  controls_.control<DashboardButton>(&Content::moreButton, &Actions::showMore);
  processes_ = controls_.bind(&Content::processes, new ProcessListWidget(theme_, this));
  controls_.label("processNote", &Content::processNote);
  controls_.control<DashboardButton>(&Content::activityButton, &Actions::openActivityMonitor);
}

void DashboardPage::addKeepAwake() {
  awake_.label("awakeState", &AwakePageContent::state);
  awake_.label("awakeDetail", &AwakePageContent::detail);
  awake_.control<DashboardButton>(&AwakePageContent::start, &AwakePageActions::startOrStop);
  awake_.control<DashboardButton>(&AwakePageContent::extend, &AwakePageActions::extend);
  awake_.label("awakeDurationTitle", &AwakePageContent::durationTitle);
  awake_.control<PopUpButton>(&AwakePageContent::duration, &AwakePageActions::selectDuration);
  awake_.control<TextField>(&AwakePageContent::minutes, &AwakePageActions::editMinutes);
  awake_.control<DatePicker>(&AwakePageContent::date, &AwakePageActions::pickDate);
  awake_.control<CheckBox>(&AwakePageContent::display, &AwakePageActions::switchDisplay);
  awake_.control<CheckBox>(&AwakePageContent::plugged, &AwakePageActions::switchPlugged);
  awake_.label("awakeBatteryTitle", &AwakePageContent::batteryTitle);
  awake_.control<PopUpButton>(&AwakePageContent::battery, &AwakePageActions::selectBatteryFloor);
  awake_.control<DashboardButton>(&AwakePageContent::off, &AwakePageActions::turnDisplayOff);
  awake_.label("awakeNote", &AwakePageContent::note);
}

void DashboardPage::setActions(DashboardActions actions) {
  awake_.setActions(std::move(actions.awake));
  usage_->setActions(std::move(actions.usage));
  controls_.setActions(std::move(actions));
}

void DashboardPage::render(const DashboardContent& content) {
  controls_.render(content);
  setSpokenName(*processes_, content.processTitle.text);
  awake_.render(content.awake);
  usage_->render(content.usage);
  if (std::exchange(footerSeparator_, content.footerSeparator) != content.footerSeparator) update();
  resize(toQSize(content.size));
}

void DashboardPage::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(toQRectF(footerSeparator_), theme_.separator());
  painter.setRenderHint(QPainter::Antialiasing);
  const auto drawRingAround = [&](const ScrollArea& view, const QMargins& room) {
    if (keyboardFocusVisible(view)) drawFocusRing(painter, view.geometry() + room, 6, theme_.focusRing());
  };
  drawRingAround(*processes_, {8, 0, 8, 0});
  drawRingAround(usage_->scroll(), {8, 6, 8, 6});  // its cards reach to its edges
}

}  // namespace nimbo
