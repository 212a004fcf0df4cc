// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_system_sleep.h"

#include <fcntl.h>

#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

constexpr const char* kLogind = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";

}  // namespace

Subscription LogindSystemSleep::observe(std::function<void()> willSleep, std::function<void()> didWake) {
  if (!logind_) start();
  return observers_.add([willSleep = std::move(willSleep), didWake = std::move(didWake)](Notice notice) {
    notice == Notice::willSleep ? willSleep() : didWake();
  });
}

// Not yet at once when it was lost: what took it may still be there.
void LogindSystemSleep::connect() {
  inhibit_.reset();
  system_.emplace(loops_.event, address_, [this] { lost(); });
  if (bus() == nullptr) return retry_.later([this] { connect(); });
  if (logind_) start();
}

// Nobody is left to tell of the wake.
void LogindSystemSleep::lost() {
  owner_.clear();
  prepareForSleep(false);
  retry_.later([this] { connect(); });
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
    retry_.succeeded();
    if (sleeping_) {
      prepareForSleep(false);
    } else {
      takeLock();
    }
  });
}

void LogindSystemSleep::takeLock() {
  const auto again = [this] { retry_.later([this] { takeLock(); }); };
  retry_.cancel();
  const BusMessage call =
      methodCall(bus(), {kLogind, kPath, kManager, "Inhibit"}, "sleep", "Nimbo", "Nimbo pauses its readings", "delay");
  inhibit_ = callAsync(call, [this, again](sd_bus_message* reply) {
    int descriptor = -1;
    const bool granted = !isError(reply) && sd_bus_message_read(reply, "h", &descriptor) > 0;
    UniqueFd lock(granted ? ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3) : -1);
    if (!lock) return again();
    lock_ = std::move(lock);
    retry_.succeeded();
  });
  if (!inhibit_) again();  // it could not be sent
}

void LogindSystemSleep::prepareForSleep(bool sleeping) {
  if (std::exchange(sleeping_, sleeping) == sleeping) return;
  if (sleeping) {
    observers_.notify(Notice::willSleep);
    retry_.cancel();
    inhibit_.reset();  // a lock that arrives now would only hold the machine up
    lock_.reset();
  } else {
    takeLock();
    observers_.notify(Notice::didWake);
  }
}

}  // namespace nimbo
