// SPDX-License-Identifier: MIT
#include "platform/linux/power/desktop_assertion_client.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

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

// The first systemd whose locks on sleep bind the user who holds them, and so that user's idle daemons; but then
// manual sleep as well.
constexpr int kLocksBindTheirOwner = 257;

// One assertion in all, and each of its steps.
constexpr seconds kLongestWait{2};
constexpr seconds kLongestStep{1};

// The shortest time after which a desktop can be told to act is a minute; some look twice as often.
// At most 29 s apart.
constexpr seconds kX11ResetInterval{25};
constexpr seconds kX11ResetLeeway{4};

BusMessage versionCall(sd_bus* system) {
  constexpr BusMethod kGet{"org.freedesktop.systemd1", "/org/freedesktop/systemd1", "org.freedesktop.DBus.Properties",
                           "Get"};
  return methodCall(system, kGet, "org.freedesktop.systemd1.Manager", "Version");
}

/// Of "252.39-1~deb12u2": 252.
std::optional<int> readVersion(sd_bus_message* reply) {
  const char* version = nullptr;
  if (reply == nullptr || isError(reply) || sd_bus_message_read(reply, "v", "s", &version) <= 0) return std::nullopt;
  const int number = std::atoi(version);
  return number > 0 ? std::optional(number) : std::nullopt;
}

/// What is taken, step by step, for one assertion.
class Attempt {
 public:
  Attempt(const DesktopAssertionClient::Means& means, std::optional<int>& systemd, std::string reason)
      : means_(means), systemd_(systemd), reason_(std::move(reason)) {
    findServices(stepEnd(2));
  }

  void keepSystemAwake() {
    if (has(kSessionManager)) {
      inhibit(kNoSuspend, 2);
    } else if (has(kPlasma)) {
      inhibit(kPowerManagement, 2);
    } else if (has(kPowerManagement.name)) {
      inhibit(kPowerManagement, 2);  // XFCE's, which follows nothing else
      taken.keepsDisplayOnToo = !taken.inhibitors.empty();
    }
    if (taken.inhibitors.empty()) {
      keepPlainSystemAwake();
    } else if (taken.keepsDisplayOnToo) {
      lock(weakLock());  // against logind's own idle action
    }
  }

  void keepDisplayOn() {
    if (sessionHangs_) return;  // nobody can tell what this desktop follows
    if (has(kSessionManager)) {
      inhibit(kNoIdle, 0);
    } else if (has(kPlasma)) {
      inhibit(kScreenSaver, 1);
      if (taken.inhibitors.empty()) lock("idle");
    } else {
      keepPlainDisplayOn();
    }
  }

  DesktopAssertionClient::Assertion taken;
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

  // A lock on idle must not be taken on desktops with a policy of their own while that can be had: where it is
  // followed, it keeps the display on as well. Elsewhere idle daemons may heed it, and before locks bind their owner
  // nothing else, or nothing but the X server's idle time.
  void keepPlainSystemAwake() {
    if (locksBindTheirOwner()) return lock("sleep");
    lock(weakLock());
    if (!has(kSessionManager) && !has(kPlasma)) keepResettingX11();
    taken.keepsDisplayOnToo = true;
  }

  // Desktops without a policy of their own: any of these may be what turns the display off.
  void keepPlainDisplayOn() {
    if (has(kPowerManagement.name)) inhibit(kPowerManagement, 2);
    if (has(kScreenSaver.name)) inhibit(kScreenSaver, 1);
    lock("idle");
    keepResettingX11();
  }

  [[nodiscard]] bool locksBindTheirOwner() {
    if (!systemd_) {
      const SdBusConnection bus(nullptr, means_.systemAddress);
      systemd_ = readVersion(bus.ask(versionCall(bus.get()), stepEnd(1)).get());
    }
    return systemd_ >= kLocksBindTheirOwner;
  }

  /// Against logind's own idle action and, where it spares this user's own hand, against sleep by other users.
  [[nodiscard]] const char* weakLock() { return locksBindTheirOwner() ? "idle" : "sleep:idle"; }

  void inhibit(const CookieService& service, int stepsAfter) {
    add(takeCookie(means_.loops, means_.sessionAddress, service, reason_, stepEnd(stepsAfter)));
  }
  void lock(const char* what) { add(takeLogindLock(means_.systemAddress, what, reason_, stepEnd(0))); }
  void add(Inhibitor inhibitor) {
    if (inhibitor) {
      taken.inhibitors.push_back(std::move(*inhibitor));
    } else if (error.code == ENOTSUP) {
      error = inhibitor.error();
    }
  }

  // Everybody's idle time begins again, now and then again and again.
  void keepResettingX11() {
    const std::shared_ptr<X11Screen> screen = means_.makeX11Screen ? means_.makeX11Screen() : nullptr;
    if (!screen || !screen->resetScreenSaver()) return;
    taken.inhibitors.push_back(means_.loops.timers.every(kX11ResetInterval, kX11ResetLeeway, [screen] {
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
  std::optional<int>& systemd_;
  const std::string reason_;
  const Deadline end_ = steady_clock::now() + kLongestWait;
  std::vector<std::string> services_;  // that the session has
  bool sessionHangs_ = false;
};

}  // namespace

DesktopAssertionClient::DesktopAssertionClient(Means means, sd_bus* system)
    : means_(std::move(means)), versionQuery_(callAsync(versionCall(system), [this](sd_bus_message* reply) {
        if (!systemd_) systemd_ = readVersion(reply);
      })) {}

Result<std::uint32_t, PowerError> DesktopAssertionClient::create(const std::string& type, const std::string& reason) {
  Attempt attempt(means_, systemd_, reason);
  if (type == kPreventSystemSleep) attempt.keepSystemAwake();
  if (type == kPreventDisplaySleep) attempt.keepDisplayOn();
  if (attempt.taken.inhibitors.empty()) return tl::unexpected(attempt.error);
  held_.emplace(++lastId_, std::move(attempt.taken));
  return lastId_;
}

bool DesktopAssertionClient::keepsDisplayOnToo() const {
  return std::any_of(held_.begin(), held_.end(), [](const auto& entry) { return entry.second.keepsDisplayOnToo; });
}

bool DesktopAssertionClient::manualSleepApplies() const { return systemd_ && *systemd_ < kLocksBindTheirOwner; }

}  // namespace nimbo
