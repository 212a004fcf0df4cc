// SPDX-License-Identifier: MIT
#pragma once

#include "ui/dashboard/dashboard_window.h"

class QKeyEvent;
class QWidget;

namespace nimbo {

class CheckBox;
class DashboardButton;
class DatePicker;
class FittedLabel;
class PopUpButton;
class TextField;
class Theme;

/// The Keep Awake page: one widget for each field of its content, in the same order, which is also
/// the order in which Tab visits them. The widgets stand directly in `parent`, which owns them.
class AwakePage {
 public:
  AwakePage(const Theme& theme, QWidget& parent);
  AwakePage(const AwakePage&) = delete;  // the widgets call it
  AwakePage& operator=(const AwakePage&) = delete;

  void setActions(AwakeActions actions);
  void render(const AwakeContent& content);

  /// Presses the button whose key equivalent `key` is; whether there was one.
  bool performKeyEquivalent(const QKeyEvent& key);

 private:
  [[nodiscard]] FittedLabel* makeLabel(const char* name);
  /// Calls the action with what the control reports.
  template <class... Values>
  [[nodiscard]] std::function<void(Values...)> caller(std::function<void(Values...)> AwakeActions::*action);

  const Theme& theme_;
  QWidget& parent_;
  AwakeActions actions_;

  FittedLabel* const state_;
  FittedLabel* const detail_;
  DashboardButton* const start_;
  DashboardButton* const extend_;
  FittedLabel* const durationTitle_;
  PopUpButton* const duration_;
  TextField* const minutes_;
  DatePicker* const date_;
  CheckBox* const display_;
  CheckBox* const plugged_;
  FittedLabel* const batteryTitle_;
  PopUpButton* const battery_;
  DashboardButton* const off_;
  FittedLabel* const note_;
};

}  // namespace nimbo
