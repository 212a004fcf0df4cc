// SPDX-License-Identifier: MIT
#include "platform/linux/display/sway_display.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// Letting go of the key or the button that asked for it must not turn the display on again.
constexpr milliseconds kPause{700};

// A film may keep the session from ever being idle.
constexpr seconds kPatience{5};
constexpr seconds kPatienceLeeway{1};

constexpr milliseconds kLastWait{200};

}  // namespace

SwayDisplay::~SwayDisplay() {
  if (isOff_ || wantsOff_) runLastSwayCommand(sockets_.commands, command(false), kLastWait);
}

Subscription SwayDisplay::turnOff(std::function<void()> failed) {
  failed_ = std::move(failed);
  if (!wantsOff_) waitForPause();
  request_ = std::make_shared<std::monostate>();
  return Subscription([this, request = std::weak_ptr(request_)] {
    if (!request.expired()) takeBack();
  });
}

void SwayDisplay::waitForPause() {
  input_.emplace(loop_, sockets_.wayland, kPause,
                 WaylandIdleWatch::Handlers{[this] { set(true); }, [this] { set(false); }, [this] { fail(); }});
  patience_ = loop_.every(kPatience, kPatienceLeeway, [this] { fail(); });
}

void SwayDisplay::takeBack() {
  failed_ = nullptr;
  if (wantsOff_ || isOff_) return;
  patience_.reset();
  input_.reset();
}

void SwayDisplay::set(bool off) {
  patience_.reset();
  if (!off) input_.reset();
  wantsOff_ = off;
  apply();
}

// One command after the other: sway does not listen to a client that has hung up.
void SwayDisplay::apply() {
  if (command_ || isOff_ == wantsOff_) return;
  command_ = std::make_unique<SwayCommand>(loop_, sockets_.commands, command(wantsOff_),
                                           [this, off = wantsOff_](bool carriedOut) { applied(off, carriedOut); });
}

void SwayDisplay::applied(bool off, bool carriedOut) {
  command_.reset();
  if (carriedOut) {
    isOff_ = off;
    return apply();
  }
  oldWord_ = !oldWord_;
  if (oldWord_) return apply();
  isOff_ = false;  // nothing more can be done about it
  fail();
}

void SwayDisplay::fail() {
  set(false);
  if (const auto failed = std::exchange(failed_, nullptr)) failed();
}

std::string SwayDisplay::command(bool off) const {
  return std::string("output * ") + (oldWord_ ? "dpms " : "power ") + (off ? "off" : "on");
}

}  // namespace nimbo
