// SPDX-License-Identifier: MIT
#include "update/update_schedule.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

// Shared with earlier versions: never rename one.
constexpr char kEnableAutomaticChecks[] = "SUEnableAutomaticChecks";
constexpr char kLastCheckTime[] = "SULastCheckTime";  // seconds since 1970

constexpr seconds kInterval = std::chrono::hours(24);
// After a start or a log-in the network may not be there yet, and others want the processor.
constexpr seconds kSettling = std::chrono::minutes(1);
// So that it joins a wake-up that somebody else needs.
constexpr std::chrono::hours kLeeway{1};

std::int64_t secondsSince1970(system_clock::time_point time) {
  return std::chrono::floor<seconds>(time.time_since_epoch()).count();
}

}  // namespace

UpdateSchedule::UpdateSchedule(const Services& services, std::function<void()> due)
    : services_(services), due_(std::move(due)) {
  rearm();
}

bool UpdateSchedule::enabled() const { return services_.defaults.boolean(kEnableAutomaticChecks).value_or(false); }

void UpdateSchedule::setEnabled(bool on) {
  services_.defaults.set(kEnableAutomaticChecks, on);
  rearm();
}

void UpdateSchedule::checkBegins() {
  services_.defaults.set(kLastCheckTime, secondsSince1970(services_.clock.now()));
  rearm();
}

// A time in the future was written before the clock was set back; it must not put off checks for years.
UpdateSchedule::Time UpdateSchedule::nextCheck(Time now) const {
  const auto stored = services_.defaults.integer(kLastCheckTime).value_or(0);
  const seconds last(std::clamp<std::int64_t>(stored, 0, std::max<std::int64_t>(secondsSince1970(now), 0)));
  return std::max(Time(last) + kInterval, now + kSettling);
}

void UpdateSchedule::arm(Time when) {
  timer_ = services_.loop.at(when, kLeeway, [this] { fire(); });
}

void UpdateSchedule::rearm() {
  timer_.reset();
  if (enabled()) arm(nextCheck(services_.clock.now()));
}

// The next one is set before, because a check may not be possible now. Checks that were switched off by
// hand in the settings file end here.
void UpdateSchedule::fire() {
  timer_.reset();
  if (!enabled()) return;
  arm(services_.clock.now() + kInterval);
  due_();
}

}  // namespace nimbo
