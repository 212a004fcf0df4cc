// SPDX-License-Identifier: MIT
#include "platform/linux/display/wayland/wayland_display.h"

#include "platform/linux/display/display_modules.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A film may keep the session from ever being idle.
constexpr seconds kLongestWaitForPause{5};
constexpr seconds kWaitLeeway{1};

// At the end of the program.
constexpr milliseconds kLongestWaitForTurningOn{200};

}  // namespace

WaylandDisplay::~WaylandDisplay() {
  if (state_ == State::off) session_->turnOutputs(true);
  // A compositor does not listen to a client that has hung up.
  if (state_ == State::off || state_ == State::finishing) session_->waitForAnswer(kLongestWaitForTurningOn);
}

Result<Subscription, DisplayPowerError> WaylandDisplay::sleepNow(std::function<void()> failed) {
  failed_ = std::move(failed);
  if (state_ != State::off) longestWaitForPause_ = loop_.every(kLongestWaitForPause, kWaitLeeway, [this] { fail(); });
  if (state_ == State::disconnected) connect();
  if (state_ == State::waitingForPause || state_ == State::finishing) waitForPause();
  request_ = std::make_shared<std::monostate>();
  return Subscription([this, request = std::weak_ptr(request_)] {
    if (!request.expired()) takeBack();
  });
}

void WaylandDisplay::connect() {
  session_.emplace(loop_, socket_, [this](bool connected) { eventsHandled(connected); });
  state_ = State::connecting;
}

void WaylandDisplay::eventsHandled(bool connected) {
  if (!connected) {
    lost();
  } else if (state_ == State::connecting && session_->answered()) {
    introduced();
  } else if (state_ == State::waitingForPause && session_->inputPauses()) {
    longestWaitForPause_.reset();
    state_ = State::off;
    session_->turnOutputs(false);
  } else if (state_ == State::off && session_->outputsRefuse()) {
    turnOn();
    fail();
  } else if (state_ == State::off && !session_->inputPauses()) {
    turnOn();
  } else if (state_ == State::finishing && session_->answered()) {
    session_.reset();
    state_ = State::disconnected;
  }
}

void WaylandDisplay::introduced() {
  if (std::exchange(leftOff_, false)) session_->turnOutputs(true);
  if (failed_ && session_->canTurnOutputsOff()) return waitForPause();
  finish();
  fail();
}

void WaylandDisplay::waitForPause() {
  state_ = State::waitingForPause;
  session_->watchInput(kPauseBeforeOff);
}

void WaylandDisplay::turnOn() {
  session_->turnOutputs(true);
  finish();
}

void WaylandDisplay::finish() {
  state_ = State::finishing;
  session_->askForAnswer();
}

void WaylandDisplay::lost() {
  leftOff_ = state_ == State::off || state_ == State::finishing;
  session_.reset();
  state_ = State::disconnected;
  if (leftOff_) connect();
  fail();
}

void WaylandDisplay::takeBack() {
  failed_ = nullptr;
  longestWaitForPause_.reset();
  if (state_ == State::waitingForPause) finish();
}

void WaylandDisplay::fail() {
  const auto failed = std::exchange(failed_, nullptr);
  takeBack();
  if (failed) failed();
}

}  // namespace nimbo
