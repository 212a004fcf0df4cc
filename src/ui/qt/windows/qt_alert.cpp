// SPDX-License-Identifier: MIT
#include "ui/qt/windows/qt_alert.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/qt/controls/dashboard_button.h"
#include "ui/qt/controls/page_controls.h"
#include "ui/qt/controls/text_fitting.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

constexpr double kWidth = 380;
constexpr double kMargin = 24;
constexpr double kBottomMargin = 20;
constexpr double kTextWidth = kWidth - 2 * kMargin;
constexpr double kTextGap = 8;
constexpr double kButtonsGap = 24;
constexpr double kButtonHeight = 30;
constexpr double kButtonTextSize = 13;
constexpr double kSmallestButton = 96;
constexpr double kButtonPadding = 20;  // on each side of its title, what it leaves free around itself included
constexpr double kButtonInset = 3;     // buttons leave that much of their frame free
constexpr double kButtonGap = 4;
constexpr int kMostLines = 8;
constexpr TextStyle kTitleStyle{15, FontWeight::semibold};
constexpr TextStyle kTextStyle{13, FontWeight::regular, ColorRole::secondaryLabel};

Qt::WindowFlags flags() {
  return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
         Qt::WindowStaysOnTopHint;
}

/// As many lines of the width of the alert as the text needs.
LabelContent wrapped(const std::string& text, const TextStyle& style, double top) {
  const QFont font = fontFor(style.size, style.weight);
  const auto lines = wrapText(QString::fromStdString(text), font, kTextWidth, kMostLines);
  const double height = std::ceil(QFontMetricsF(font).lineSpacing()) * static_cast<double>(lines.size());
  LabelContent content{{kMargin, top, kTextWidth, height}, style, text};
  content.lines = static_cast<int>(lines.size());
  return content;
}

double buttonWidth(const std::string& title) {
  const QFont font = fontFor(kButtonTextSize, FontWeight::medium);
  return std::max(kSmallestButton,
                  std::ceil(textWidth(QString::fromStdString(title), font, false)) + 2 * kButtonPadding);
}

}  // namespace

QtAlert::QtAlert(const Theme& theme, WindowSystem& windowSystem, const AlertContent& content, AlertAnswer answered)
    : QDialog(nullptr, flags()), windowSystem_(windowSystem), cancel_(content.cancel), answered_(std::move(answered)) {
  setObjectName("alert");
  setWindowModality(Qt::ApplicationModal);
  setProgramIcon(*this);
  setWindowTitle("Nimbo");
  setAccessibleName(QString::fromStdString(content.title));
  setAccessibleDescription(QString::fromStdString(content.text));
  const double text = placeText(theme, wrapped(content.title, kTitleStyle, kMargin), "alertTitle") + kTextGap;
  const double buttons = placeText(theme, wrapped(content.text, kTextStyle, text), "alertText") + kButtonsGap;
  const double end = placeButtons(theme, content.buttons, buttons) + kBottomMargin;
  setFixedSize(qRound(kWidth), qRound(end));
  answerTimer_.setSingleShot(true);
  connect(&answerTimer_, &QTimer::timeout, this, [this] { call(answered_, pressed_); });
}

double QtAlert::placeText(const Theme& theme, const LabelContent& content, const char* name) {
  auto* const label = new FittedLabel(theme, this, name);
  label->setContent(content);
  return content.frame.maxY();
}

double QtAlert::placeButtons(const Theme& theme, const std::vector<std::string>& titles, double top) {
  double right = kWidth - kMargin + kButtonInset;
  for (std::size_t index = 0; index < titles.size(); ++index) {
    auto* const button = new DashboardButton(
        theme, [this, index](const ControlEvent&) { answer(index); }, this);
    const double width = buttonWidth(titles[index]);
    right -= width + (index == 0 ? 0 : kButtonGap);
    ButtonContent content{"alertButton" + std::to_string(index), {right, top, width, kButtonHeight}};
    content.title = titles[index];
    content.textSize = kButtonTextSize;
    button->setContent(content);
    button->setDefault(index == 0);
    if (index == 0) button->setFocus();
  }
  return top + kButtonHeight;
}

void QtAlert::present() {
  if (pressed_) return;
  if (!isVisible()) placeInMiddle(*this);
  bringToFront(*this, windowSystem_);
}

void QtAlert::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  QAccessibleEvent announcement(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&announcement);
}

void QtAlert::reject() { answer(cancel_); }

// A turn later, because the answer may destroy the very button that is being pressed.
void QtAlert::answer(std::size_t button) {
  if (pressed_) return;
  pressed_ = button;
  hide();
  answerTimer_.start(0);
}

}  // namespace nimbo
