// SPDX-License-Identifier: MIT
#include "platform/linux/tray/registration_pacer.h"

#include <utility>

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kPause{250};
constexpr std::chrono::milliseconds kPauseLeeway{50};

}  // namespace

Subscription RegistrationPacer::request(std::function<void()> turn) {
  if (!pause_) {
    startPause();
    turn();
    return {};
  }
  const Turn waiting = std::make_shared<std::function<void()>>(std::move(turn));
  waiting_.push_back(waiting);
  return Subscription([this, waiting] { waiting_.remove(waiting); });
}

void RegistrationPacer::startPause() {
  pause_ = loop_.every(kPause, kPauseLeeway, [this] { pauseIsOver(); });
}

void RegistrationPacer::pauseIsOver() {
  pause_.reset();
  if (waiting_.empty()) return;
  const Turn next = waiting_.front();
  waiting_.pop_front();
  startPause();
  (*next)();
}

}  // namespace nimbo
