// SPDX-License-Identifier: MIT
#include "ui/settings/settings_page_builder.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "ui/settings/settings_controls.h"

namespace nimbo {
namespace {

constexpr double kLeft = 12;
constexpr double kRight = 492;
constexpr double kColumn = 180;
constexpr double kCaptionWidth = 156;
constexpr double kChoiceWidth = 240;
constexpr double kCheckTextIndent = 23;
constexpr double kButtonInset = 3;  // what a button leaves free at either side

constexpr double kHeadingHeight = 26;
constexpr double kSubtitleHeight = 18;
constexpr double kSectionHeight = 18;
constexpr double kCheckHeight = 22;
constexpr double kChoiceHeight = 26;
constexpr double kCaptionHeight = 20;
constexpr double kButtonHeight = 28;
constexpr double kLineHeight = 15;

constexpr double kHeadingGap = 12;
constexpr double kSectionGap = 18;
constexpr double kGap = 4;
constexpr double kTightGap = 2;

int lineCount(const std::string& text) { return 1 + static_cast<int>(std::ranges::count(text, '\n')); }

}  // namespace

void SettingsPageBuilder::heading(const std::string& title, const std::string& subtitle) {
  label({kLeft, bottom_, kRight - kLeft, kHeadingHeight}, {20, FontWeight::semibold}, title);
  label({kLeft, bottom_ + kTightGap, kRight - kLeft, kSubtitleHeight},
        {13, FontWeight::regular, ColorRole::secondaryLabel}, subtitle);
  bottom_ += kHeadingGap;
}

void SettingsPageBuilder::section(const std::string& title) {
  label({kLeft, bottom_ + kSectionGap, kRight - kLeft, kSectionHeight}, {13, FontWeight::semibold}, title);
}

void SettingsPageBuilder::check(std::string_view identifier) { addCheck(identifier, kLeft, kRight - kLeft); }

void SettingsPageBuilder::check(const std::string& identifier, const std::string& title, bool on) {
  addCheck(identifier, title, on, kLeft, kRight - kLeft);
}

void SettingsPageBuilder::columnChecks(std::initializer_list<std::string_view> identifiers) {
  const bool alone = identifiers.size() == 1;
  const double width = alone ? kRight - kColumn : kChoiceWidth / static_cast<double>(identifiers.size());
  const double above = bottom_;
  double x = kColumn;
  for (const auto identifier : identifiers) {
    bottom_ = above;
    addCheck(identifier, x, width);
    x += width;
  }
}

void SettingsPageBuilder::addCheck(std::string_view identifier, double x, double width) {
  const auto* const found = settingsCheck(identifier);
  assert(found != nullptr);
  addCheck(std::string(identifier), found->title, found->isOn(settings_), x, width);
}

void SettingsPageBuilder::addCheck(const std::string& identifier, const std::string& title, bool on, double x,
                                   double width) {
  CheckBoxContent box{identifier, {x, bottom_ + kTightGap, width, kCheckHeight}, title};
  box.on = on;
  bottom_ = box.frame.maxY();
  controls_.emplace_back(std::move(box));
}

void SettingsPageBuilder::choice(std::string_view identifier) {
  const auto* const found = settingsChoice(identifier);
  assert(found != nullptr);
  PopUpContent list{std::string(identifier), {kColumn, bottom_ + kGap, kChoiceWidth, kChoiceHeight}};
  for (const auto& item : found->items) list.items.push_back(item.title);
  list.selected = found->selected(settings_);
  list.accessibleName = found->label;
  // In the middle of the pop-up's height.
  label({kLeft, list.frame.y + (kChoiceHeight - kCaptionHeight) / 2, kCaptionWidth, kCaptionHeight}, {13},
        found->label);
  bottom_ = list.frame.maxY();
  controls_.emplace_back(std::move(list));
}

void SettingsPageBuilder::button(const std::string& identifier, const std::string& title, double width) {
  addButton(identifier, title, kLeft, width);
}

void SettingsPageBuilder::checkButton(const std::string& identifier, const std::string& title, double width) {
  addButton(identifier, title, kLeft + kCheckTextIndent, width);
}

void SettingsPageBuilder::addButton(const std::string& identifier, const std::string& title, double x, double width) {
  ButtonContent button{identifier, {x - kButtonInset, bottom_ + kGap, width, kButtonHeight}};
  button.title = title;
  bottom_ = button.frame.maxY();
  controls_.emplace_back(std::move(button));
}

void SettingsPageBuilder::note(const std::string& text) {
  bottom_ += kGap;
  smallText(text, 0, 1, ColorRole::secondaryLabel);
}

void SettingsPageBuilder::checkHelp(const std::string& text, int lines) {
  smallText(text, kCheckTextIndent, lines, ColorRole::secondaryLabel);
}

void SettingsPageBuilder::choiceHelp(const std::string& text) {
  bottom_ += kGap;
  smallText(text, kColumn - kLeft, 1, ColorRole::secondaryLabel);
}

void SettingsPageBuilder::warning(const std::string& text) {
  bottom_ += kGap;
  smallText(text, 0, 2, ColorRole::orange);
}

void SettingsPageBuilder::besideButton(std::initializer_list<std::string> lines) {
  bottom_ -= kButtonHeight;
  for (const auto& line : lines) smallText(line, kColumn - kLeft, 1, ColorRole::secondaryLabel);
}

void SettingsPageBuilder::smallText(const std::string& text, double indent, int lines, ColorRole color) {
  const int count = std::max(lines, lineCount(text));
  label({kLeft + indent, bottom_, kRight - kLeft - indent, kLineHeight * count}, {11, FontWeight::regular, color}, text,
        count);
}

void SettingsPageBuilder::label(const Rect& frame, const TextStyle& style, const std::string& text, int lines) {
  LabelContent content{frame, style, text};
  content.lines = lines;
  bottom_ = frame.maxY();
  controls_.emplace_back(std::move(content));
}

}  // namespace nimbo
