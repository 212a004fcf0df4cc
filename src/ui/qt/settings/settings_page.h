// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <variant>
#include <vector>

#include "ui/settings/settings_window.h"

namespace nimbo {

class CheckBox;
class DashboardButton;
class FittedLabel;
class PopUpButton;
class Theme;

/// A page of the settings window: one widget for each control, in the same order, which is also the
/// order in which Tab visits them.
class SettingsPage final : public QWidget {
 public:
  /// Wider than its content's frame by that much on either side, for the focus rings of controls at its edges.
  static constexpr int kRingRoom = 4;

  SettingsPage(const Theme& theme, ControlListener listener, QWidget* parent);

  /// At the top left corner of its parent.
  void render(const SettingsPageContent& content);

 private:
  /// A widget for each alternative of SettingsControl, in the same order.
  using Control = std::variant<FittedLabel*, CheckBox*, PopUpButton*, DashboardButton*>;

  [[nodiscard]] FittedLabel* make(const LabelContent& content);
  [[nodiscard]] CheckBox* make(const CheckBoxContent& content);
  [[nodiscard]] PopUpButton* make(const PopUpContent& content);
  [[nodiscard]] DashboardButton* make(const ButtonContent& content);
  /// Takes the first of `candidates` that can show `content`, or makes a widget that can.
  [[nodiscard]] Control take(std::vector<Control>& candidates, const SettingsControl& content);
  void orderTabs() const;

  const Theme& theme_;
  const ControlListener listener_;
  std::vector<Control> controls_;
};

}  // namespace nimbo
