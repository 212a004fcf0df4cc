// SPDX-License-Identifier: MIT
#include "update/scheduled_updater.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::seconds;

// Shared with earlier versions: never rename one.
constexpr char kEnableAutomaticChecks[] = "SUEnableAutomaticChecks";
constexpr char kLastCheckTime[] = "SULastCheckTime";  // seconds since 1970

constexpr seconds kInterval = std::chrono::hours(24);
// After a start or a log-in the network may not be there yet, and others want the processor.
constexpr seconds kSettling = std::chrono::minutes(1);
// So that it joins a wake-up that somebody else needs.
constexpr std::chrono::hours kLeeway{1};

std::int64_t secondsSince1970(std::chrono::system_clock::time_point time) {
  return std::chrono::floor<seconds>(time.time_since_epoch()).count();
}

}  // namespace

ScheduledUpdater::ScheduledUpdater(const Services& services, UpdateSessionMaker make)
    : services_(services), make_(std::move(make)) {
  scheduleNext();
}

void ScheduledUpdater::checkForUpdates() {
  if (!canCheckForUpdates()) return;
  session_.reset();
  begin(UpdateRequest::user);
  // What the maker itself would have said cannot be said without it.
  if (session_ == nullptr) {
    services_.windows.show({"Couldn’t check for updates", "A part of Nimbo is missing. Install it again.", {"OK"}}, {});
  }
}

void ScheduledUpdater::begin(UpdateRequest request) {
  services_.defaults.set(kLastCheckTime, secondsSince1970(services_.clock.now()));
  scheduleNext();
  session_ = make_(request, [this] { session_.reset(); });
}

bool ScheduledUpdater::automaticallyChecksForUpdates() const {
  return services_.defaults.boolean(kEnableAutomaticChecks).value_or(false);
}

void ScheduledUpdater::setAutomaticallyChecksForUpdates(bool on) {
  services_.defaults.set(kEnableAutomaticChecks, on);
  scheduleNext();
}

// A time in the future was written before the clock was set back; it must not put off checks for years.
ScheduledUpdater::Time ScheduledUpdater::nextCheck(Time now) const {
  const auto stored = services_.defaults.integer(kLastCheckTime).value_or(0);
  const seconds last(std::clamp<std::int64_t>(stored, 0, std::max<std::int64_t>(secondsSince1970(now), 0)));
  return std::max(Time(last) + kInterval, now + kSettling);
}

void ScheduledUpdater::scheduleNext() {
  timer_.reset();
  if (automaticallyChecksForUpdates()) scheduleAt(nextCheck(services_.clock.now()));
}

void ScheduledUpdater::scheduleAt(Time when) {
  timer_ = services_.loop.at(when, kLeeway, [this] { checkIsDue(); });
}

// The next one is set before, because a check may not be possible now. Checks that were switched off by
// hand in the settings file end here.
void ScheduledUpdater::checkIsDue() {
  timer_.reset();
  if (!automaticallyChecksForUpdates()) return;
  scheduleAt(services_.clock.now() + kInterval);
  if (session_ == nullptr) begin(UpdateRequest::automatic);
}

}  // namespace nimbo
