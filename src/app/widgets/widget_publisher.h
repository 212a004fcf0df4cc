// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "base/lifetime.h"
#include "platform/platform_services.h"
#include "settings/settings.h"
#include "system/system_readings.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// What the program shares with its widgets: one JSON object whose keys are the names of the fields, in
/// their order. What is absent is left out; dates are numbers of seconds since 2001, UTC.
struct WidgetSnapshot {
  using Time = std::chrono::system_clock::time_point;

  Time date{};                          ///< when it was built
  std::optional<double> temperature{};  ///< °C, the last one accepted
  std::optional<Time> temperatureDate{};
  bool temperatureEnabled = false;  ///< whether the user watches the temperature
  UsageState codex{};
  UsageState claude{};
  bool operator==(const WidgetSnapshot&) const = default;

  [[nodiscard]] std::string encoded() const;

  /// Replaces "usage-snapshot.json" in the group's folder. False when there is no group, no folder for
  /// it, or the file could not be replaced. Waits for the disk. Any thread.
  [[nodiscard]] bool write(const WidgetCenter& to, const std::optional<std::string>& appGroup) const;
};

/// Keeps the widgets' file up to date, at most every five minutes unless forced. The file is written on
/// the utility queue, because flushing it can take long, and which is serial, so that the newest snapshot
/// is written last; what comes of it is told on the main thread, where all else happens.
class WidgetPublisher {
 public:
  /// What is published.
  struct Sources {
    const Settings& settings;
    const SystemReadings& readings;
    const UsageStates& usage;
  };
  enum class Force { no, yes };

  /// `platform` and the sources outlive it. Without `publishesWidgets` it never does anything.
  /// `messageChanged` may be empty.
  WidgetPublisher(PlatformServices& platform, Sources sources, bool publishesWidgets,
                  std::function<void()> messageChanged);

  /// Unforced it does nothing when the widgets would have nothing to show, or too soon after the last
  /// attempt, successful or not.
  void writeWidgetSnapshot(Force force);

  /// Why the widgets get nothing; absent when the last write succeeded.
  [[nodiscard]] const std::optional<std::string>& widgetMessage() const { return widgetMessage_; }

 private:
  using Time = WidgetSnapshot::Time;

  [[nodiscard]] bool isDue(Time now) const;
  [[nodiscard]] WidgetSnapshot snapshot(Time now) const;
  void write(WidgetSnapshot snapshot);
  void finish(bool written);

  PlatformServices& platform_;
  Sources sources_;
  const bool publishesWidgets_;
  std::function<void()> messageChanged_;
  std::optional<Time> lastWidgetWrite_;  // absent before the first
  std::optional<std::string> widgetMessage_;
  Lifetime lifetime_;
};

}  // namespace nimbo
