// SPDX-License-Identifier: MIT
#include "platform/linux/power/inhibition.h"

#include <chrono>
#include <utility>

#include "platform/linux/power/logind_lock.h"

namespace nimbo {
namespace {

// The shortest time after which a desktop can be told to act is a minute; some look twice as often.
// At most 29 s apart.
constexpr std::chrono::seconds kX11ResetInterval{25};
constexpr std::chrono::seconds kX11ResetLeeway{4};

}  // namespace

void Inhibition::takeCookie(const CookieService& service, Deadline deadline) {
  auto cookie = CookieInhibitor::take(means_.loops, means_.sessionAddress, service, reason_, deadline);
  if (cookie) {
    cookies_.push_back(std::move(*cookie));
  } else {
    note(cookie.error());
  }
}

void Inhibition::takeLogindLock(const char* what, Deadline deadline) {
  auto lock = nimbo::takeLogindLock(means_.systemAddress, what, reason_, deadline);
  if (lock) {
    lock_ = std::move(*lock);
  } else {
    note(lock.error());
  }
}

void Inhibition::keepResettingX11() {
  x11Screen_ = means_.makeX11Screen ? means_.makeX11Screen() : nullptr;
  if (!x11Screen_ || !x11Screen_->resetScreenSaver()) return;
  x11Resets_ = means_.loops.timers.every(kX11ResetInterval, kX11ResetLeeway, [this] {
    // One that fails is made good by the next, or there is no display any more to keep on.
    [[maybe_unused]] const bool reset = x11Screen_->resetScreenSaver();
  });
}

void Inhibition::note(PowerError error) {
  if (error_.code == ENOTSUP) error_ = error;
}

}  // namespace nimbo
