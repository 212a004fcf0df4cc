// SPDX-License-Identifier: MIT
#include "platform/linux/power/desktop_assertion_client.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr const char* kSessionManager = "org.gnome.SessionManager";
constexpr const char* kPlasma = "org.kde.Solid.PowerManagement.PolicyAgent";

constexpr CookieService kNoSuspend = {kSessionManager, "/org/gnome/SessionManager", kSessionManager, "Uninhibit", 4};
constexpr CookieService kNoIdle = {kSessionManager, "/org/gnome/SessionManager", kSessionManager, "Uninhibit", 8};
constexpr CookieService kPowerManagement = {"org.freedesktop.PowerManagement",
                                            "/org/freedesktop/PowerManagement/Inhibit",
                                            "org.freedesktop.PowerManagement.Inhibit", "UnInhibit"};
constexpr CookieService kScreenSaver = {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                        "org.freedesktop.ScreenSaver", "UnInhibit"};

// One assertion in all, and each of its steps.
constexpr seconds kLongestWait{2};
constexpr seconds kLongestStep{1};

// The shortest time after which a desktop can be told to act is a minute; some look twice as often.
// At most 29 s apart.
constexpr seconds kX11ResetInterval{25};
constexpr seconds kX11ResetLeeway{4};

/// What is taken, step by step, for one assertion.
class Attempt {
 public:
  Attempt(const DesktopAssertionClient::Means& means, const std::string& reason) : means_(means), reason_(reason) {
    findServices(stepEnd(1));
  }

  // A block of logind's sleep is effective on every desktop, but its idle must not be used here: where it
  // is followed, it keeps the display on as well.
  void keepSystemAwake() {
    if (has(kSessionManager)) {
      inhibit(kNoSuspend, 1);
    } else if (has(kPlasma)) {
      inhibit(kPowerManagement, 1);
    }
    if (held.empty()) lock("sleep");
  }

  void keepDisplayOn() {
    if (sessionHangs_) return;  // nobody can tell what this desktop follows
    if (has(kSessionManager)) {
      inhibit(kNoIdle, 0);
    } else if (has(kPlasma)) {
      inhibit(kScreenSaver, 1);
      if (held.empty()) lock("idle");
    } else {
      keepPlainDisplayOn();
    }
  }

  std::vector<Subscription> held;
  PowerError error{ENOTSUP};  ///< what went wrong first, unless that was only that there was nobody to ask

 private:
  void findServices(Deadline deadline) {
    const SdBusConnection bus(nullptr, means_.sessionAddress);
    const BusMessage reply = bus.ask(methodCall(bus.get(), methodOfTheBus("ListNames")), deadline);
    sessionHangs_ = bus.get() != nullptr && !reply;
    if (sessionHangs_) error = {ETIMEDOUT};
    if (reply && !isError(reply.get()) && !readStrings(reply.get(), services_)) services_.clear();
  }
  [[nodiscard]] bool has(std::string_view service) const {
    return std::find(services_.begin(), services_.end(), service) != services_.end();
  }

  // Desktops without a policy of their own: any of these may be what turns the display off.
  void keepPlainDisplayOn() {
    if (has(kPowerManagement.name)) inhibit(kPowerManagement, 2);
    if (has(kScreenSaver.name)) inhibit(kScreenSaver, 1);
    if (held.empty()) lock("idle");
    keepResettingX11();
  }

  void inhibit(const CookieService& service, int stepsAfter) {
    add(takeCookie(means_.loops, means_.sessionAddress, service, reason_, stepEnd(stepsAfter)));
  }
  void lock(const char* what) { add(takeLogindLock(means_.systemAddress, what, reason_, stepEnd(0))); }
  void add(Inhibitor inhibitor) {
    if (inhibitor) {
      held.push_back(std::move(*inhibitor));
    } else if (error.code == ENOTSUP) {
      error = inhibitor.error();
    }
  }

  // Everybody's idle time begins again, now and then again and again.
  void keepResettingX11() {
    const std::shared_ptr<X11Screen> screen = means_.makeX11Screen ? means_.makeX11Screen() : nullptr;
    if (!screen || !screen->resetScreenSaver()) return;
    held.push_back(means_.loops.timers.every(kX11ResetInterval, kX11ResetLeeway, [screen] {
      // One that fails is made good by the next, or there is no display any more to keep on.
      [[maybe_unused]] const bool reset = screen->resetScreenSaver();
    }));
  }

  /// When a step has to end that leaves as much time to each of `stepsAfter`.
  [[nodiscard]] Deadline stepEnd(int stepsAfter) const {
    const auto now = steady_clock::now();
    const auto share = (end_ - now) / (stepsAfter + 1);
    return now + std::clamp<steady_clock::duration>(share, steady_clock::duration::zero(), kLongestStep);
  }

  const DesktopAssertionClient::Means& means_;
  const std::string& reason_;
  const Deadline end_ = steady_clock::now() + kLongestWait;
  std::vector<std::string> services_;  // that the session has
  bool sessionHangs_ = false;
};

}  // namespace

Result<std::uint32_t, PowerError> DesktopAssertionClient::create(const std::string& type, const std::string& reason) {
  Attempt attempt(means_, reason);
  if (type == kPreventSystemSleep) attempt.keepSystemAwake();
  if (type == kPreventDisplaySleep) attempt.keepDisplayOn();
  if (attempt.held.empty()) return tl::unexpected(attempt.error);
  held_.emplace(++lastId_, std::move(attempt.held));
  return lastId_;
}

}  // namespace nimbo
