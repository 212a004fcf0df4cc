// SPDX-License-Identifier: MIT
#include "ui/dashboard/awake_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include "awake/session_length.h"

namespace nimbo {
namespace {

struct DurationItem {
  const char* title;
  std::int64_t duration;
};
constexpr std::array kDurations{
    DurationItem{"Until I stop it", kUntilStopped},
    DurationItem{"30 minutes", 1800},
    DurationItem{"1 hour", 3600},
    DurationItem{"2 hours", 7200},
    DurationItem{"4 hours", 14400},
    DurationItem{"Custom minutes…", kCustomMinutes},
    DurationItem{"Until a date / time…", kUntilDate},
};

std::string noteText(bool manualSleepApplies, const Wording& wording) {
  const char* const sleep =
      manualSleepApplies ? "Manual Sleep still applies." : "Manual Sleep may be refused during a session.";
  return fmt::format("Keep your {}’s lid open. {} App-specific background limits still apply.", wording.laptop, sleep);
}

template <class Items, class Value, class Projection = std::identity>
std::size_t indexOf(const Items& items, const Value& value, Projection projection = {}) {
  const auto found = std::ranges::find(items, value, projection);
  return found == items.end() ? 0 : static_cast<std::size_t>(found - items.begin());
}

/// "For claude and make."
std::string holdersText(const std::vector<std::string>& names) {
  if (names.size() == 1) return fmt::format("For {}.", names[0]);
  if (names.size() == 2) return fmt::format("For {} and {}.", names[0], names[1]);
  return fmt::format("For {} and {} others.", names[0], names.size() - 1);
}

std::string sessionText(const AwakeManager& manager, const Dates& dates) {
  if (!manager.message().empty()) return manager.message();
  const auto end = manager.endsAt();
  const auto holders = manager.holders();
  std::string text;
  if (manager.isOwn()) text = end ? "Until " + dates.shortDateAndTime(*end) + "." : "Until you stop it.";
  if (!holders.empty()) text += (text.empty() ? "" : " ") + holdersText(holders);
  if (manager.keepsDisplayOn()) return text + " Display stays on.";
  return text + (manager.displayCannotSleep() ? " The display stays on, too." : " Display may sleep.");
}

}  // namespace

AwakeView::AwakeView(const DashboardSources& sources, std::function<void()> changed)
    : sources_(sources), changed_(std::move(changed)), date_(suggestedEnd(sources.clock.now())) {
  reset();
}

void AwakeView::reset() {
  validationMessage_.reset();
  minutes_ = std::to_string(clampedCustomMinutes(sources_.settings.awakeCustomMinutes()));
  const auto now = sources_.clock.now();
  if (!sources_.awake.isActive() && date_ <= now) date_ = suggestedEnd(now);
}

void AwakeView::handle(const ControlEvent& event) {
  const auto& identifier = event.identifier;
  const auto& settings = sources_.settings;
  if (identifier == "start") return startOrStop();
  if (identifier == "extend") return sources_.awake.extend(std::chrono::minutes(30));
  if (identifier == "duration") return selectDuration(event.as<std::size_t>());
  if (identifier == "minutes") return editMinutes(event.as<std::string>());
  if (identifier == "date") return pickDate(event.as<Time>());
  if (identifier == "display") return switchDisplay(event.as<bool>());
  if (identifier == "plugged") return storeRules(event.as<bool>(), settings.awakeBatteryFloor());
  if (identifier == "battery") {
    const auto floor = kBatteryFloors[std::min(event.as<std::size_t>(), kBatteryFloors.size() - 1)];
    return storeRules(settings.awakeOnlyOnPower(), static_cast<int>(floor));
  }
  if (identifier == "displayOff") sources_.awake.turnDisplayOff();
}

void AwakeView::startOrStop() {
  std::optional<Time> end;
  if (!sources_.awake.isActive()) {
    const auto minutes = customMinutes(minutes_);
    const auto duration = sources_.settings.awakeDuration();
    if (duration == kCustomMinutes) {
      if (!minutes) {
        validationMessage_ = "Enter a whole number from 1 to 10080 minutes.";
        changed_();
        return;
      }
      sources_.settings.setAwakeCustomMinutes(*minutes);
    }
    end = sessionEnd(duration, minutes.value_or(0), date_, sources_.clock.now());
  }
  validationMessage_.reset();
  sources_.awake.toggle(end);
  changed_();
}

void AwakeView::selectDuration(std::size_t index) {
  validationMessage_.reset();
  sources_.settings.setAwakeDuration(kDurations[std::min(index, kDurations.size() - 1)].duration);
  changed_();
}

void AwakeView::editMinutes(const std::string& text) {
  minutes_ = text;
  validationMessage_.reset();
  if (const auto minutes = customMinutes(text)) sources_.settings.setAwakeCustomMinutes(*minutes);
  changed_();
}

void AwakeView::pickDate(Time date) {
  date_ = date;
  changed_();
}

void AwakeView::switchDisplay(bool on) {
  // Shown as the user has it now, so that a refusal is a change that puts the switch back.
  switchedDisplay_ = on;
  changed_();
  switchedDisplay_.reset();
  sources_.awake.keepDisplayOn(on);
  settingsChanged();
}

void AwakeView::storeRules(bool onlyOnPower, int batteryFloor) {
  sources_.settings.setAwakeOnlyOnPower(onlyOnPower);
  sources_.settings.setAwakeBatteryFloor(batteryFloor);
  sources_.awake.rulesChanged();
  settingsChanged();
}

void AwakeView::settingsChanged() {
  if (onSettingsChanged) onSettingsChanged();
  changed_();
}

AwakeContent AwakeView::content() const {
  AwakeContent content;
  fillSession(content);
  fillLength(content);
  fillRules(content);
  content.note = {{20, 386, 300, 44}, {10, FontWeight::regular, ColorRole::tertiaryLabel}};
  content.note.text = noteText(sources_.awake.manualSleepApplies(), sources_.wording);
  content.note.lines = 3;
  return content;
}

void AwakeView::fillSession(AwakeContent& content) const {
  const bool active = sources_.awake.isActive();
  const auto& computer = sources_.wording.computer;
  content.state = {{20, 72, 300, 24}, {17, FontWeight::semibold, active ? ColorRole::green : ColorRole::label}};
  content.state.text = active ? fmt::format("Your {} is staying awake", computer) : "Ready for your next run";
  content.detail = {{20, 98, 300, 34}, {12, FontWeight::regular, ColorRole::secondaryLabel}};
  content.detail.text = validationMessage_.value_or(sessionText(sources_.awake, sources_.dates));
  content.detail.lines = 2;
  // Buttons leave three points free at either side; their faces line up with the texts.
  content.start = {"start", {17, 144, 186, 30}};
  content.start.title = active ? "Stop keeping awake" : fmt::format("Keep {} awake", computer);
  content.extend = {"extend", {205, 144, 118, 30}, ButtonLook::rounded, 13, "+30 min"};
  content.extend.enabled = active && sources_.awake.endsAt();
  content.off = {"displayOff", {17, 344, 186, 28}, ButtonLook::rounded, 12, "Turn display off now"};
  content.off.enabled = active;
}

void AwakeView::fillLength(AwakeContent& content) const {
  const auto duration = sources_.settings.awakeDuration();
  content.durationTitle = {{20, 188, 300, 16}, {11, FontWeight::medium, ColorRole::secondaryLabel}, "Session"};
  content.duration = {
      "duration", {20, 206, 142, 26}, {}, indexOf(kDurations, duration, &DurationItem::duration), "Session"};
  for (const auto& item : kDurations) content.duration.items.emplace_back(item.title);

  const Rect beside{170, 206, 150, 26};
  content.minutes = {"minutes", beside, minutes_, "1–10080 minutes", "Custom duration in minutes"};
  content.minutes.toolTip = "Custom session length in minutes (up to 7 days)";
  content.minutes.visible = duration == kCustomMinutes;
  content.date = {"date", beside, date_, "Session end date and time"};
  content.date.visible = duration == kUntilDate;
  content.duration.enabled = content.minutes.enabled = content.date.enabled = !sources_.awake.isActive();
}

void AwakeView::fillRules(AwakeContent& content) const {
  const auto& settings = sources_.settings;
  const bool keepsDisplayOn = sources_.awake.isActive() ? sources_.awake.keepsDisplayOn() : settings.awakeDisplayOn();
  content.display = {"display", {20, 246, 300, 22}, "Keep display on too"};
  content.display.toolTip =
      fmt::format("Off by default: the display may sleep while the {} stays awake.", sources_.wording.computer);
  content.display.on = switchedDisplay_.value_or(keepsDisplayOn);
  content.plugged = {"plugged", {20, 274, 300, 22}, "Only while connected to power"};
  content.plugged.on = settings.awakeOnlyOnPower();

  content.batteryTitle = {{20, 306, 146, 20}, {13}, "Stop on battery at"};
  content.battery = {"battery", {170, 303, 150, 26}};
  content.battery.accessibleName = "Stop on battery at";
  for (const auto floor : kBatteryFloors) {
    content.battery.items.push_back(floor == 0 ? std::string("Never") : std::to_string(floor) + "%");
  }
  content.battery.selected = indexOf(kBatteryFloors, settings.awakeBatteryFloor());
}

}  // namespace nimbo
