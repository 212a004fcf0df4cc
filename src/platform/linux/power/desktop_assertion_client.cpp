// SPDX-License-Identifier: MIT
#include "platform/linux/power/desktop_assertion_client.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/bus/sd_bus_calls.h"

namespace nimbo {
namespace {

using std::chrono::steady_clock;

constexpr const char* kSessionManager = "org.gnome.SessionManager";
constexpr const char* kPlasma = "org.kde.Solid.PowerManagement.PolicyAgent";

constexpr CookieService sessionManager(std::uint32_t flags) {
  return {kSessionManager, "/org/gnome/SessionManager", "org.gnome.SessionManager", "Uninhibit", flags};
}
constexpr CookieService kNoSuspend = sessionManager(4);
constexpr CookieService kNoIdle = sessionManager(8);
constexpr CookieService kPowerManagement = {"org.freedesktop.PowerManagement",
                                            "/org/freedesktop/PowerManagement/Inhibit",
                                            "org.freedesktop.PowerManagement.Inhibit", "UnInhibit"};
constexpr CookieService kScreenSaver = {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                        "org.freedesktop.ScreenSaver", "UnInhibit"};

/// The time that one assertion may take: in all, and for each step.
class TimeAllowed {
 public:
  /// When a step has to end that leaves as much to each of `stepsAfter`.
  [[nodiscard]] Deadline forStep(int stepsAfter) const {
    const auto now = steady_clock::now();
    const auto share = (end_ - now) / (stepsAfter + 1);
    return now + std::clamp<steady_clock::duration>(share, steady_clock::duration::zero(), std::chrono::seconds(1));
  }

 private:
  const Deadline end_ = steady_clock::now() + std::chrono::seconds(2);
};

/// Which services the session has.
struct Session {
  std::vector<std::string> names;
  bool hangs = false;  ///< its bus does not answer

  [[nodiscard]] bool has(std::string_view name) const {
    return std::find(names.begin(), names.end(), name) != names.end();
  }
};

Session askSession(const std::string& address, Deadline deadline) {
  const BoundedBus bus(address);
  Session session;
  bool answered = false;
  const BusSlot pending = callAsync(methodCall(bus.get(), methodOfTheBus("ListNames")), [&](sd_bus_message* reply) {
    answered = true;
    if (!isError(reply) && !readStrings(reply, session.names)) session.names.clear();
  });
  session.hangs = pending && !bus.turnUntil(deadline, [&answered] { return answered; });
  return session;
}

// A block of logind's sleep is effective on every desktop, but its idle must not be used here: where it
// is followed, it keeps the display on as well.
void keepSystemAwake(Inhibition& inhibition, const Session& session, const TimeAllowed& allowed) {
  if (session.has(kSessionManager)) {
    inhibition.takeCookie(kNoSuspend, allowed.forStep(1));
  } else if (session.has(kPlasma)) {
    inhibition.takeCookie(kPowerManagement, allowed.forStep(1));
  }
  if (!inhibition.holds()) inhibition.takeLogindLock("sleep", allowed.forStep(0));
}

// Desktops without a policy of their own: any of these may be what turns the display off.
void keepPlainDisplayOn(Inhibition& inhibition, const Session& session, const TimeAllowed& allowed) {
  if (session.has(kPowerManagement.name)) inhibition.takeCookie(kPowerManagement, allowed.forStep(2));
  if (session.has(kScreenSaver.name)) inhibition.takeCookie(kScreenSaver, allowed.forStep(1));
  if (!inhibition.holds()) inhibition.takeLogindLock("idle", allowed.forStep(0));
  inhibition.keepResettingX11();
}

void keepDisplayOn(Inhibition& inhibition, const Session& session, const TimeAllowed& allowed) {
  if (session.hangs) return;  // nobody can tell whom this desktop follows
  if (session.has(kSessionManager)) {
    inhibition.takeCookie(kNoIdle, allowed.forStep(0));
  } else if (session.has(kPlasma)) {
    inhibition.takeCookie(kScreenSaver, allowed.forStep(1));
    if (!inhibition.holds()) inhibition.takeLogindLock("idle", allowed.forStep(0));
  } else {
    keepPlainDisplayOn(inhibition, session, allowed);
  }
}

}  // namespace

Result<std::uint32_t, PowerError> DesktopAssertionClient::create(const std::string& type, const std::string& reason) {
  const TimeAllowed allowed;
  const Session session = askSession(means_.sessionAddress, allowed.forStep(1));
  auto inhibition = std::make_unique<Inhibition>(means_, reason);
  if (session.hangs) inhibition->note({ETIMEDOUT});
  if (type == kPreventSystemSleep) keepSystemAwake(*inhibition, session, allowed);
  if (type == kPreventDisplaySleep) keepDisplayOn(*inhibition, session, allowed);
  if (!inhibition->holds()) return tl::unexpected(inhibition->error());
  held_.emplace(++lastId_, std::move(inhibition));
  return lastId_;
}

}  // namespace nimbo
