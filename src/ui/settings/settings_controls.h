// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings.h"

namespace nimbo {

/// The part of the program that a changed setting concerns, so that only that part applies it.
struct SettingsChange {
  enum class Kind { display, monitors, appearance, interval, usage, awakeRules, presentation };

  Kind kind;
  bool on = false;  ///< of `display`: whether it is to stay on
  bool operator==(const SettingsChange&) const = default;
};

/// A check box that stands for stored settings.
struct SettingsCheck {
  std::string_view identifier;
  const char* title;
  std::function<bool(const Settings& settings)> isOn;
  std::function<void(Settings& settings, bool on)> write;
  SettingsChange::Kind change;
};

struct SettingsChoiceItem {
  std::string title;
  std::int64_t tag;
  bool operator==(const SettingsChoiceItem&) const = default;
};

/// A pop-up that stands for a stored setting: one of its items has the tag that is stored.
struct SettingsChoice {
  std::string_view identifier;
  const char* label;  ///< with a place for what the system calls the bar, or without
  std::vector<SettingsChoiceItem> items;
  std::function<std::int64_t(const Settings& settings)> tag;
  std::function<void(Settings& settings, std::int64_t tag)> write;
  SettingsChange::Kind change;

  [[nodiscard]] std::size_t selected(const Settings& settings) const;
};

// Null for the identifier of anything else. What they return lives as long as the program.
[[nodiscard]] const SettingsCheck* settingsCheck(std::string_view identifier);
[[nodiscard]] const SettingsChoice* settingsChoice(std::string_view identifier);

}  // namespace nimbo
