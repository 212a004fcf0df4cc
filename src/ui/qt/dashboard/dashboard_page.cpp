// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/dashboard_page.h"

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

struct MemoryRow {
  MemoryRowContent ResourcesContent::*shown;
  const char* title;
  const char* value;
};
constexpr MemoryRow kMemoryRows[] = {{&ResourcesContent::app, "row0", "value0"},
                                     {&ResourcesContent::wired, "row1", "value1"},
                                     {&ResourcesContent::compressed, "row2", "value2"},
                                     {&ResourcesContent::available, "row3", "value3"},
                                     {&ResourcesContent::swap, "row4", "value4"}};

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
  for (const auto& [shown, title, value] : kMemoryRows) {
    resources_.label(title, [row = shown](const ResourcesContent& content) { return (content.*row).title; });
    resources_.label(value, [row = shown](const ResourcesContent& content) { return (content.*row).value; });
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
  const auto renderIfShown = [](auto& controls, const auto* page) {
    if (page != nullptr) return controls.render(*page);
    controls.hide();
  };
  const auto* const resources = std::get_if<ResourcesContent>(&content.page);
  renderIfShown(resources_, resources);
  if (resources != nullptr) setSpokenName(*processes_, resources->processTitle.text);
  renderIfShown(awake_, std::get_if<AwakeContent>(&content.page));
  renderIfShown(*usage_, std::get_if<UsageContent>(&content.page));
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
