// SPDX-License-Identifier: MIT
#include "platform/linux/tray/registration_pacer.h"

#include <time.h>

#include <chrono>
#include <utility>

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kPace{250};
constexpr std::uint64_t kAccuracy = 50'000;  // microseconds

}  // namespace

Subscription RegistrationPacer::request(std::function<void()> turn) {
  if (!pace_) {
    startPace();
    turn();
    return {};
  }
  const Turn waiting = std::make_shared<std::function<void()>>(std::move(turn));
  waiting_.push_back(waiting);
  return Subscription([this, waiting] { waiting_.remove(waiting); });
}

void RegistrationPacer::startPace() {
  sd_event_source* source = nullptr;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto due = std::chrono::duration_cast<std::chrono::microseconds>(now + kPace).count();
  sd_event_add_time(event_, &source, CLOCK_MONOTONIC, static_cast<std::uint64_t>(due), kAccuracy, onPaceOver, this);
  pace_.reset(source);
}

int RegistrationPacer::onPaceOver(sd_event_source* /*source*/, std::uint64_t /*due*/, void* self) {
  auto& pacer = *static_cast<RegistrationPacer*>(self);
  pacer.pace_.reset();
  if (pacer.waiting_.empty()) return 0;
  const Turn next = pacer.waiting_.front();
  pacer.waiting_.pop_front();
  pacer.startPace();
  (*next)();
  return 0;
}

}  // namespace nimbo
