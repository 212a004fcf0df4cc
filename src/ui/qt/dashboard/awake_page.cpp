// SPDX-License-Identifier: MIT
#include "ui/qt/dashboard/awake_page.h"

#include <utility>

#include "ui/qt/controls/check_box.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/date_picker.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/pop_up_button.h"
#include "ui/qt/controls/text_field.h"

namespace nimbo {

FittedLabel* AwakePage::makeLabel(const char* name) {
  auto* const label = new FittedLabel(theme_, &parent_);
  label->setObjectName(name);
  return label;
}

template <class... Values>
std::function<void(Values...)> AwakePage::caller(std::function<void(Values...)> AwakeActions::*action) {
  return [this, action](Values... values) {
    // A copy, because the action may give this page other actions.
    if (const auto act = actions_.*action) act(values...);
  };
}

AwakePage::AwakePage(const Theme& theme, QWidget& parent)
    : theme_(theme),
      parent_(parent),
      state_(makeLabel("awakeState")),
      detail_(makeLabel("awakeDetail")),
      start_(new DashboardButton(theme, caller(&AwakeActions::startOrStop), &parent)),
      extend_(new DashboardButton(theme, caller(&AwakeActions::extend), &parent)),
      durationTitle_(makeLabel("awakeDurationTitle")),
      duration_(new PopUpButton(theme, caller(&AwakeActions::selectDuration), &parent)),
      minutes_(new TextField(theme, caller(&AwakeActions::editMinutes), &parent)),
      date_(new DatePicker(theme, caller(&AwakeActions::pickDate), &parent)),
      display_(new CheckBox(theme, caller(&AwakeActions::switchDisplay), &parent)),
      plugged_(new CheckBox(theme, caller(&AwakeActions::switchPlugged), &parent)),
      batteryTitle_(makeLabel("awakeBatteryTitle")),
      battery_(new PopUpButton(theme, caller(&AwakeActions::selectBatteryFloor), &parent)),
      off_(new DashboardButton(theme, caller(&AwakeActions::turnDisplayOff), &parent)),
      note_(makeLabel("awakeNote")) {}

void AwakePage::setActions(AwakeActions actions) { actions_ = std::move(actions); }

void AwakePage::render(const AwakeContent& content) {
  state_->setContent(content.state);
  detail_->setContent(content.detail);
  start_->setContent(content.start);
  extend_->setContent(content.extend);
  durationTitle_->setContent(content.durationTitle);
  duration_->setContent(content.duration);
  minutes_->setContent(content.minutes);
  date_->setContent(content.date);
  display_->setContent(content.display);
  plugged_->setContent(content.plugged);
  batteryTitle_->setContent(content.batteryTitle);
  battery_->setContent(content.battery);
  off_->setContent(content.off);
  note_->setContent(content.note);
}

bool AwakePage::performKeyEquivalent(const QKeyEvent& key) {
  return start_->performKeyEquivalent(key) || extend_->performKeyEquivalent(key) || off_->performKeyEquivalent(key);
}

}  // namespace nimbo
