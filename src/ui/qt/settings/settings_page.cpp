// SPDX-License-Identifier: MIT
#include "ui/qt/settings/settings_page.h"

#include <algorithm>
#include <utility>

#include "ui/qt/controls/check_box.h"
#include "ui/qt/controls/content_widget.h"
#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/controls/pop_up_button.h"

namespace nimbo {
namespace {

QString identifierOf(const SettingsControl& content) {
  return std::visit(
      [](const auto& each) {
        QString identifier;
        if constexpr (requires { each.identifier; }) identifier = QString::fromStdString(each.identifier);
        return identifier;
      },
      content);
}

template <class Control>
QWidget& widgetOf(const Control& control) {
  return *std::visit([](auto* widget) -> QWidget* { return widget; }, control);
}

/// Whether the widget shows that control already, so that it keeps what it has, such as the focus.
template <class Control>
bool fits(const Control& control, const SettingsControl& content) {
  return control.index() == content.index() && widgetOf(control).objectName() == identifierOf(content);
}

template <class Control>
void setContent(const Control& control, const SettingsControl& content) {
  std::visit(
      [](auto* widget, auto shown) {
        shown.frame.x += SettingsPage::kRingRoom;
        if constexpr (requires { widget->setContent(shown); }) widget->setContent(shown);
      },
      control, content);
}

}  // namespace

SettingsPage::SettingsPage(const Theme& theme, ControlListener listener, QWidget* parent)
    : QWidget(parent), theme_(theme), listener_(std::move(listener)) {}

FittedLabel* SettingsPage::make(const LabelContent& /*content*/) { return new FittedLabel(theme_, this); }
CheckBox* SettingsPage::make(const CheckBoxContent& /*content*/) { return new CheckBox(theme_, listener_, this); }
PopUpButton* SettingsPage::make(const PopUpContent& /*content*/) { return new PopUpButton(theme_, listener_, this); }
DashboardButton* SettingsPage::make(const ButtonContent& /*content*/) {
  return new DashboardButton(theme_, listener_, this);
}

SettingsPage::Control SettingsPage::take(std::vector<Control>& candidates, const SettingsControl& content) {
  const auto found = std::ranges::find_if(candidates, [&](const auto& each) { return fits(each, content); });
  if (found == candidates.end()) return std::visit([this](const auto& each) -> Control { return make(each); }, content);
  const Control control = *found;
  candidates.erase(found);
  return control;
}

void SettingsPage::render(const SettingsPageContent& content) {
  setSpokenName(*this, content.accessibleName);
  resize(toQSize({content.frame.width, content.frame.height}) + QSize(2 * kRingRoom, 0));
  const auto before = controls_;
  auto rest = std::exchange(controls_, {});
  for (const auto& each : content.controls) {
    controls_.push_back(take(rest, each));
    setContent(controls_.back(), each);
  }
  for (const auto& gone : rest) discard(widgetOf(gone));
  if (controls_ != before) orderTabs();
  setVisible(content.visible);
}

void SettingsPage::orderTabs() const {
  QWidget* previous = nullptr;
  for (const auto& control : controls_) {
    QWidget& next = widgetOf(control);
    if (next.focusPolicy() == Qt::NoFocus) continue;
    if (previous != nullptr) setTabOrder(previous, &next);
    previous = &next;
  }
}

}  // namespace nimbo
