// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_system_sleep.h"

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

constexpr const char* kLogind = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";

constexpr std::chrono::minutes kLongestRetry{5};

}  // namespace

Subscription LogindSystemSleep::observe(std::function<void()> willSleep, std::function<void()> didWake) {
  if (!logind_) start();
  return observers_.add([willSleep = std::move(willSleep), didWake = std::move(didWake)](Notice notice) {
    notice == Notice::willSleep ? willSleep() : didWake();
  });
}

// Not yet at once when it was lost: what took it may still be there.
void LogindSystemSleep::connect() {
  retry_.reset();
  inhibit_.reset();
  system_.emplace(loops_.event, address_, [this] { lost(); });
  if (bus() == nullptr) return later(&LogindSystemSleep::connect);
  if (logind_) start();
}

// Nobody is left to tell of the wake.
void LogindSystemSleep::lost() {
  owner_.clear();
  prepareForSleep(false);
  later(&LogindSystemSleep::connect);
}

void LogindSystemSleep::start() {
  prepareForSleep_ =
      addMatch(bus(), matchRule({kLogind, kPath, kManager, "PrepareForSleep"}), [this](sd_bus_message* signal) {
        int sleeping = 0;
        if (isFrom(signal, owner_) && sd_bus_message_read(signal, "b", &sleeping) > 0) prepareForSleep(sleeping != 0);
      });
  // A logind that starts anew may have lost the lock, and it is not in the middle of a sleep.
  logind_.emplace(bus(), kLogind, [this](const std::string& owner) {
    owner_ = owner;
    if (owner.empty()) return;
    distance_ = kFirstRetry;
    if (sleeping_) {
      prepareForSleep(false);
    } else {
      takeLock();
    }
  });
}

void LogindSystemSleep::takeLock() {
  retry_.reset();
  const BusMessage call =
      methodCall(bus(), {kLogind, kPath, kManager, "Inhibit"}, "sleep", "Nimbo", "Nimbo pauses its readings", "delay");
  inhibit_ = callAsync(call, [this](sd_bus_message* reply) {
    int descriptor = -1;
    const bool granted = !isError(reply) && sd_bus_message_read(reply, "h", &descriptor) > 0;
    UniqueFd lock(granted ? ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3) : -1);
    if (!lock) return later(&LogindSystemSleep::takeLock);
    lock_ = std::move(lock);
    distance_ = kFirstRetry;
  });
  if (!inhibit_) later(&LogindSystemSleep::takeLock);  // it could not be sent
}

void LogindSystemSleep::later(void (LogindSystemSleep::*action)()) {
  retry_ = loops_.timers.every(distance_, distance_ / 4, [this, action] { (this->*action)(); });
  distance_ = std::min<std::chrono::milliseconds>(distance_ * 2, kLongestRetry);
}

void LogindSystemSleep::prepareForSleep(bool sleeping) {
  if (std::exchange(sleeping_, sleeping) == sleeping) return;
  if (sleeping) {
    observers_.notify(Notice::willSleep);
    retry_.reset();
    inhibit_.reset();  // a lock that arrives now would only hold the machine up
    lock_.reset();
  } else {
    takeLock();
    observers_.notify(Notice::didWake);
  }
}

}  // namespace nimbo
