// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "settings/settings.h"
#include "ui/settings/settings_window_content.h"

namespace nimbo {

inline constexpr Size kSettingsPageSize{504, 588};

/// Sets the controls of one page below each other: captions on the left, what they caption in a column
/// beside them, explanations under what they explain. Stored values are read as they are met.
class SettingsPageBuilder {
 public:
  explicit SettingsPageBuilder(const Settings& settings) : settings_(settings) {}

  void heading(const std::string& title, const std::string& subtitle);
  /// Begins a part of the page with a heading of its own.
  void section(const std::string& title);
  /// Leaves more room above what follows.
  void space(double points) { bottom_ += points; }

  // Controls of the store, by their identifiers.
  void check(std::string_view identifier);
  /// Side by side in the column.
  void columnChecks(std::initializer_list<std::string_view> identifiers);
  void choice(std::string_view identifier);

  void check(const std::string& identifier, const std::string& title, bool on);
  void button(const std::string& identifier, const std::string& title, double width);
  /// Under the text of the check box above.
  void checkButton(const std::string& identifier, const std::string& title, double width);

  // Small texts with as many lines as they have line breaks, and at least `lines`.
  void note(const std::string& text);
  void checkHelp(const std::string& text, int lines = 1);
  void choiceHelp(const std::string& text);
  /// Set in orange.
  void warning(const std::string& text);
  /// Lines in the column, beginning beside the button above.
  void besideButton(std::initializer_list<std::string> lines);

  [[nodiscard]] std::vector<SettingsControl> takeControls() { return std::move(controls_); }

 private:
  void label(const Rect& frame, const TextStyle& style, const std::string& text, int lines = 1);
  void smallText(const std::string& text, double indent, int lines, ColorRole color);
  void addButton(const std::string& identifier, const std::string& title, double x, double width);
  void addCheck(std::string_view identifier, double x, double width);
  void addCheck(const std::string& identifier, const std::string& title, bool on, double x, double width);

  const Settings& settings_;
  std::vector<SettingsControl> controls_;
  double bottom_ = 0;  // of what has been set so far
};

}  // namespace nimbo
