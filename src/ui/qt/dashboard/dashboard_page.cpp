// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/dashboard_page.h"

#include <string>
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

constexpr MemoryRowContent ResourcesContent::*kMemoryRows[] = {&ResourcesContent::app, &ResourcesContent::wired,
                                                               &ResourcesContent::compressed,
                                                               &ResourcesContent::available, &ResourcesContent::swap};

}  // namespace

DashboardPage::DashboardPage(const Theme& theme, const ControlListener& listener, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      controls_(theme, *this, listener),
      resources_(theme, *this, listener),
      awake_(theme, *this, listener) {
  setObjectName("page");
  controls_.label("title", &Content::title);
  controls_.control<SegmentedTabs>(&Content::tabs);
  controls_.control<DashboardButton>(&Content::settingsButton);
  addResources();
  resources_.label("footer", &ResourcesContent::footer);
  addKeepAwake();
  usage_.emplace(theme, *this, listener);
  controls_.control<DashboardButton>(&Content::quitButton);
  controls_.label("quitHint", &Content::quitHint);
}

void DashboardPage::addResources() {
  resources_.label("hero", &ResourcesContent::hero);
  resources_.label("subtitle", &ResourcesContent::subtitle);
  resources_.bind(&ResourcesContent::history, new ChartWidget(theme_, this))->setObjectName("history");
  resources_.label("pressure", &ResourcesContent::pressure);
  resources_.label("time", &ResourcesContent::time);
  resources_.bind(&ResourcesContent::breakdown, new ChartWidget(theme_, this))->setObjectName("breakdown");
  for (int number = 0; const auto row : kMemoryRows) {
    const std::string name = std::to_string(number++);
    resources_.label(("row" + name).c_str(), [row](const ResourcesContent& content) { return (content.*row).title; });
    resources_.label(("value" + name).c_str(), [row](const ResourcesContent& content) { return (content.*row).value; });
  }
  resources_.label("cpu", &ResourcesContent::cpu);
  resources_.label("temperature", &ResourcesContent::temperature);
  resources_.label("processTitle", &ResourcesContent::processTitle);
  resources_.control<DashboardButton>(&ResourcesContent::lessButton);
  resources_.control<DashboardButton>(&ResourcesContent::moreButton);
  processes_ = resources_.bind(&ResourcesContent::processes, new ProcessListWidget(theme_, this));
  resources_.label("processNote", &ResourcesContent::processNote);
  resources_.control<DashboardButton>(&ResourcesContent::activityButton);
}

void DashboardPage::addKeepAwake() {
  awake_.label("awakeState", &AwakeContent::state);
  awake_.label("awakeDetail", &AwakeContent::detail);
  awake_.control<DashboardButton>(&AwakeContent::start);
  awake_.control<DashboardButton>(&AwakeContent::extend);
  awake_.label("awakeDurationTitle", &AwakeContent::durationTitle);
  awake_.control<PopUpButton>(&AwakeContent::duration);
  awake_.control<TextField>(&AwakeContent::minutes);
  awake_.control<DatePicker>(&AwakeContent::date);
  awake_.control<CheckBox>(&AwakeContent::display);
  awake_.control<CheckBox>(&AwakeContent::plugged);
  awake_.label("awakeBatteryTitle", &AwakeContent::batteryTitle);
  awake_.control<PopUpButton>(&AwakeContent::battery);
  awake_.control<DashboardButton>(&AwakeContent::off);
  awake_.label("awakeNote", &AwakeContent::note);
}

void DashboardPage::render(const DashboardContent& content) {
  controls_.render(content);
  const auto* const resources = std::get_if<ResourcesContent>(&content.page);
  resources_.renderOrHide(resources);
  if (resources != nullptr) setSpokenName(*processes_, resources->processTitle.text);
  awake_.renderOrHide(std::get_if<AwakeContent>(&content.page));
  usage_->renderOrHide(std::get_if<UsageContent>(&content.page));
  if (std::exchange(footerSeparator_, content.footerSeparator) != content.footerSeparator) update();
  resize(toQSize(content.size));
}

void DashboardPage::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.fillRect(toQRectF(footerSeparator_), theme_.color(ColorRole::separator));
  painter.setRenderHint(QPainter::Antialiasing);
  const auto drawRingAround = [&](const ScrollArea& view, const QMargins& room) {
    if (keyboardFocusVisible(view)) drawFocusRing(painter, view.geometry() + room, 6, theme_.focusRing());
  };
  drawRingAround(*processes_, {8, 0, 8, 0});
  drawRingAround(usage_->scroll(), {8, 6, 8, 6});  // its cards reach to its edges
}

}  // namespace nimbo
