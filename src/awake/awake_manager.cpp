// SPDX-License-Identifier: MIT
#include "awake/awake_manager.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "awake/session_length.h"

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kDeadlineLeeway{100};
constexpr std::chrono::seconds kBatteryInterval{30};
constexpr std::size_t kMostHolders = 64;
constexpr const char* kEnded = "Session ended. Normal sleep is allowed.";

}  // namespace

bool AwakeManager::start(std::optional<Time> until, bool keepDisplayOn, Time now) {
  if (until && *until <= now) {
    refuse("Choose an end time in the future.");
    return false;
  }
  if (endIfForbidden()) return false;
  if (!activate(keepDisplayOn)) return false;
  own_ = true;
  endsAt_ = until;
  scheduleDeadline();
  return goesOn();
}

bool AwakeManager::goesOn() {
  observeBattery();
  tell({});
  // The charger may have been pulled before it was observed.
  if (batteryObservation_) checkBattery();
  return isActive();
}

void AwakeManager::stop(std::string message) {
  end();
  tell(std::move(message));
}

void AwakeManager::end() {
  deadlineTimer_.reset();
  batteryObservation_.reset();
  displayOffRequest_.reset();
  assertions_.deactivate();
  endsAt_.reset();
  own_ = ownDisplay_ = false;
  holders_.clear();
}

// Giving up the display's part cannot fail.
void AwakeManager::endOwn(std::string message) {
  if (holders_.empty()) return stop(std::move(message));
  endsAt_.reset();
  own_ = false;
  (void)activate(false);
  tell({});
}

std::vector<std::string> AwakeManager::holders() const {
  std::vector<std::string> names;
  for (const auto& [id, holder] : holders_) names.push_back(holder.name);
  return names;
}

Result<AwakeManager::HolderId, std::string> AwakeManager::hold(std::string name, bool keepDisplayOn) {
  if (holders_.size() == kMostHolders) return tl::unexpected(std::string("Too many programs keep it awake already."));
  if (endIfForbidden() || !activate(ownDisplay_, keepDisplayOn)) return tl::unexpected(message_);
  const HolderId id = ++lastHolder_;
  holders_.emplace(id, Holder{std::move(name), keepDisplayOn});
  if (!goesOn()) return tl::unexpected(message_);
  return id;
}

void AwakeManager::letGo(HolderId holder) {
  if (holders_.erase(holder) == 0) return;
  if (holders_.empty() && !own_) return stop(kEnded);
  (void)activate(ownDisplay_);
  tell({});
}

void AwakeManager::stopByUser() { stop(kEnded); }

void AwakeManager::extend(std::chrono::seconds by) {
  checkDeadline(services_.clock.now());
  if (!isActive() || !endsAt_) return;
  *endsAt_ += by;
  scheduleDeadline();
  if (onChange) onChange();
}

bool AwakeManager::setKeepDisplayOn(bool on) {
  if (!isActive()) return true;
  if (!activate(on)) return false;
  tell({});
  return true;
}

void AwakeManager::turnDisplayOff() {
  checkDeadline(services_.clock.now());
  if (!isActive() || keepsDisplayOn()) return;
  auto request = services_.displayPower.sleepNow([this, &words = services_.wording] {
    tell(fmt::format("{} couldn’t turn the display off. Your {} is still awake.", words.system, words.computer));
  });
  if (request) {
    displayOffRequest_ = std::move(*request);
  } else {
    tell(request.error().description);
  }
}

void AwakeManager::rulesChanged() {
  if (!isActive()) return;
  observeBattery();
  checkBattery();
}

void AwakeManager::checkDeadline(Time now) {
  if (isActive() && endsAt_ && now >= *endsAt_) endOwn("Timer finished. Normal sleep is allowed.");
}

void AwakeManager::tick(Time now) {
  checkDeadline(now);
  if (isActive() && rules() != appliedRules_) rulesChanged();
  if (!batteryObservation_ || std::chrono::abs(now - batteryCheckedAt_) < kBatteryInterval) return;
  batteryCheckedAt_ = now;
  checkBattery();
}

void AwakeManager::checkBattery() {
  if (isActive()) (void)endIfForbidden();
}

void AwakeManager::toggle(std::optional<Time> end) {
  if (isActive()) return stopByUser();
  start(end, services_.settings.awakeDisplayOn(), services_.clock.now());
}

void AwakeManager::toggleTimed() {
  // A date that was picked on the page is not kept, so that choice means what the page suggests.
  const Time now = services_.clock.now();
  toggle(sessionEnd(services_.settings.awakeDuration(), clampedCustomMinutes(services_.settings.awakeCustomMinutes()),
                    suggestedEnd(now), now));
}

void AwakeManager::keepDisplayOn(bool on) {
  if (setKeepDisplayOn(on)) services_.settings.setAwakeDisplayOn(on);
}

AwakeRules AwakeManager::rules() const {
  return {services_.settings.awakeOnlyOnPower(), services_.settings.awakeBatteryFloor()};
}

bool AwakeManager::endIfForbidden() {
  auto reason = stopReason(readBattery(services_.powerSources), rules(), services_.wording);
  if (!reason) return false;
  end();
  refuse(std::move(*reason));
  return true;
}

bool AwakeManager::activate(bool ownDisplay, bool newHoldersDisplay) {
  const bool keepDisplayOn = ownDisplay || newHoldersDisplay || std::ranges::any_of(holders_, [](const auto& holder) {
                               return holder.second.keepDisplayOn;
                             });
  if (const auto held = assertions_.activate(keepDisplayOn); !held) {
    refuse(held.error().description(services_.wording));
    return false;
  }
  ownDisplay_ = ownDisplay;
  // A display that is to stay on must not go dark a moment later.
  if (keepDisplayOn) displayOffRequest_.reset();
  return true;
}

void AwakeManager::tell(std::string message) {
  message_ = std::move(message);
  if (onChange) onChange();
}

void AwakeManager::refuse(std::string message) {
  tell(std::move(message));
  if (onRefusal) onRefusal(message_);
}

void AwakeManager::scheduleDeadline() {
  deadlineTimer_.reset();
  if (!endsAt_) return;
  deadlineTimer_ = services_.mainLoop.at(*endsAt_, kDeadlineLeeway, [this] {
    const Time now = services_.clock.now();
    // The clock may have been set back since the timer, which fires only once, was due.
    if (endsAt_ && now < *endsAt_) return scheduleDeadline();
    checkDeadline(now);
  });
}

void AwakeManager::observeBattery() {
  appliedRules_ = rules();
  if (!appliedRules_.onlyOnPower && appliedRules_.batteryFloor < 1) {
    batteryObservation_.reset();
  } else if (!batteryObservation_) {
    batteryObservation_ = services_.powerSources.observe([this] { checkBattery(); });
  }
}

}  // namespace nimbo
