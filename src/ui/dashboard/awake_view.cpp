// SPDX-License-Identifier: MIT
#include "ui/dashboard/awake_view.h"

#include <algorithm>
#include <array>
#include <iterator>

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

constexpr const char* kNote =
    "Keep your MacBook’s lid open. Manual Sleep still applies. App-specific background limits still apply.";

template <class Items, class Matches>
std::size_t indexOf(const Items& items, Matches matches) {
  const auto found = std::find_if(items.begin(), items.end(), matches);
  return found == items.end() ? 0 : static_cast<std::size_t>(std::distance(items.begin(), found));
}

std::string sessionText(const AwakeManager& manager, const Dates& dates) {
  if (!manager.message().empty()) return manager.message();
  const auto end = manager.endsAt();
  const std::string text = end ? "Until " + dates.shortDateAndTime(*end) + "." : "Until you stop it.";
  return text + (manager.keepsDisplayOn() ? " Display stays on." : " Display may sleep.");
}

template <class... Arguments>
void call(const std::function<void(Arguments...)>& callback, Arguments... arguments) {
  if (callback) callback(arguments...);
}

}  // namespace

AwakeView::AwakeView(Services services) : services_(services), date_(suggestedEnd(services.clock.now())) { load(); }

void AwakeView::load() {
  const auto& settings = services_.settings;
  validationMessage_.reset();
  durationIndex_ =
      indexOf(kDurations, [wanted = settings.awakeDuration()](const auto& item) { return item.duration == wanted; });
  minutes_ = std::to_string(clampedCustomMinutes(settings.awakeCustomMinutes()));
  onlyOnPower_ = settings.awakeOnlyOnPower();
  floorIndex_ =
      indexOf(kBatteryFloors, [wanted = settings.awakeBatteryFloor()](std::int64_t floor) { return floor == wanted; });
  if (!active_) {
    displayOn_ = settings.awakeDisplayOn();
    const auto now = services_.clock.now();
    if (date_ <= now) date_ = suggestedEnd(now);
  }
  changed();
}

void AwakeView::refresh(const AwakeManager& manager) {
  active_ = manager.isActive();
  extendable_ = active_ && manager.endsAt();
  sessionDetail_ = sessionText(manager, services_.dates);
  displayOn_ = active_ ? manager.keepsDisplayOn() : services_.settings.awakeDisplayOn();
  changed();
}

AwakePageActions AwakeView::actions() {
  return {
      [this] { startOrStop(); },
      [this] { call(onExtend); },
      [this](std::size_t index) { selectDuration(index); },
      [this](const std::string& text) { editMinutes(text); },
      [this](Time date) { pickDate(date); },
      [this](bool on) { switchDisplay(on); },
      [this](bool on) {
        onlyOnPower_ = on;
        storeRules();
      },
      [this](std::size_t index) {
        floorIndex_ = std::min(index, kBatteryFloors.size() - 1);
        storeRules();
      },
      [this] { call(onDisplayOff); },
  };
}

std::int64_t AwakeView::duration() const { return kDurations[durationIndex_].duration; }

void AwakeView::startOrStop() {
  std::optional<Time> end;
  if (!active_) {
    const auto minutes = customMinutes(minutes_);
    if (duration() == kCustomMinutes) {
      if (!minutes) {
        validationMessage_ = "Enter a whole number from 1 to 10080 minutes.";
        changed();
        return;
      }
      services_.settings.setAwakeCustomMinutes(*minutes);
    }
    end = sessionEnd(duration(), minutes.value_or(0), date_, services_.clock.now());
  }
  validationMessage_.reset();
  changed();
  call(onToggle, end);
}

void AwakeView::selectDuration(std::size_t index) {
  durationIndex_ = std::min(index, kDurations.size() - 1);
  validationMessage_.reset();
  services_.settings.setAwakeDuration(duration());
  changed();
}

void AwakeView::editMinutes(const std::string& text) {
  minutes_ = text;
  validationMessage_.reset();
  if (const auto minutes = customMinutes(text)) services_.settings.setAwakeCustomMinutes(*minutes);
  changed();
}

void AwakeView::pickDate(Time date) {
  date_ = date;
  changed();
}

void AwakeView::switchDisplay(bool on) {
  // As the user sees it now, so that a refusal is a change that puts the switch back.
  displayOn_ = on;
  changed();
  call(onDisplay, on);
}

void AwakeView::storeRules() {
  services_.settings.setAwakeOnlyOnPower(onlyOnPower_);
  services_.settings.setAwakeBatteryFloor(static_cast<int>(kBatteryFloors[floorIndex_]));
  changed();
  call(onRules);
}

void AwakeView::changed() const { call(onContentChanged); }

AwakePageContent AwakeView::content(bool visible) const {
  AwakePageContent content;
  fillSession(content);
  fillLength(content);
  fillRules(content);
  content.note = {{20, 386, 300, 44}, {10, FontWeight::regular, ColorRole::tertiaryLabel}, kNote};
  content.note.lines = 3;
  if (visible) return content;
  for (auto* const label :
       {&content.state, &content.detail, &content.durationTitle, &content.batteryTitle, &content.note}) {
    label->visible = false;
  }
  for (auto* const button : {&content.start, &content.extend, &content.off}) button->visible = false;
  for (auto* const box : {&content.display, &content.plugged}) box->visible = false;
  for (auto* const list : {&content.duration, &content.battery}) list->visible = false;
  content.minutes.visible = content.date.visible = false;
  return content;
}

void AwakeView::fillSession(AwakePageContent& content) const {
  content.state = {{20, 72, 300, 24}, {17, FontWeight::semibold, active_ ? ColorRole::green : ColorRole::label}};
  content.state.text = active_ ? "Your Mac is staying awake" : "Ready for your next run";
  content.detail = {{20, 98, 300, 34}, {12, FontWeight::regular, ColorRole::secondaryLabel}};
  content.detail.text = validationMessage_.value_or(sessionDetail_);
  content.detail.lines = 2;
  // Buttons leave three points free at either side; their faces line up with the texts.
  content.start = {"start", {17, 144, 186, 30}};
  content.start.title = active_ ? "Stop keeping awake" : "Keep Mac awake";
  content.extend = {"extend", {205, 144, 118, 30}, ButtonLook::rounded, 13, "+30 min"};
  content.extend.enabled = extendable_;
  content.off = {"displayOff", {17, 344, 186, 28}, ButtonLook::rounded, 12, "Turn display off now"};
  content.off.enabled = active_;
}

void AwakeView::fillLength(AwakePageContent& content) const {
  content.durationTitle = {{20, 188, 300, 16}, {11, FontWeight::medium, ColorRole::secondaryLabel}, "Session"};
  content.duration = {"duration", {20, 206, 142, 26}};
  for (const auto& item : kDurations) content.duration.items.emplace_back(item.title);
  content.duration.selected = durationIndex_;
  content.duration.accessibleName = "Session";

  const Rect beside{170, 206, 150, 26};
  content.minutes = {"minutes", beside, minutes_, "1–10080 minutes", "Custom duration in minutes"};
  content.minutes.toolTip = "Custom session length in minutes (up to 7 days)";
  content.minutes.visible = duration() == kCustomMinutes;
  content.date = {"date", beside, date_, "Session end date and time"};
  content.date.visible = duration() == kUntilDate;
  content.duration.enabled = content.minutes.enabled = content.date.enabled = !active_;
}

void AwakeView::fillRules(AwakePageContent& content) const {
  content.display = {"display", {20, 246, 300, 22}, "Keep display on too"};
  content.display.toolTip = "Off by default: the display may sleep while the Mac stays awake.";
  content.display.on = displayOn_;
  content.plugged = {"plugged", {20, 274, 300, 22}, "Only while connected to power"};
  content.plugged.on = onlyOnPower_;

  content.batteryTitle = {{20, 306, 146, 20}, {13}, "Stop on battery at"};
  content.battery = {"battery", {170, 303, 150, 26}};
  for (const auto floor : kBatteryFloors) {
    content.battery.items.push_back(floor == 0 ? std::string("Never") : std::to_string(floor) + "%");
  }
  content.battery.selected = floorIndex_;
  content.battery.accessibleName = "Stop on battery at";
}

}  // namespace nimbo
