// SPDX-License-Identifier: MIT
#include "app/awake_commands.h"

#include "awake/session_length.h"

namespace nimbo {

AwakeCommands::AwakeCommands(AwakeManager& awake, Settings& settings, const Clock& clock)
    : awake_(awake), settings_(settings), clock_(clock) {}

void AwakeCommands::toggle(std::optional<Time> end) {
  if (awake_.isActive()) return awake_.stopByUser();
  awake_.start(end, settings_.awakeDisplayOn(), clock_.now());
}

void AwakeCommands::toggleTimed() {
  // A date that was picked on the page is not kept, so that choice means what the page suggests.
  const auto now = clock_.now();
  toggle(sessionEnd(settings_.awakeDuration(), clampedCustomMinutes(settings_.awakeCustomMinutes()), suggestedEnd(now),
                    now));
}

void AwakeCommands::extend() { awake_.extend(std::chrono::minutes(30)); }

void AwakeCommands::keepDisplayOn(bool on) {
  if (awake_.setKeepDisplayOn(on)) settings_.setAwakeDisplayOn(on);
}

void AwakeCommands::applyRules() { awake_.setRules({settings_.awakeOnlyOnPower(), settings_.awakeBatteryFloor()}); }

}  // namespace nimbo
