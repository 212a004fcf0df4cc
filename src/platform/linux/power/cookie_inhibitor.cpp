// SPDX-License-Identifier: MIT
#include "platform/linux/power/cookie_inhibitor.h"

#include <cerrno>
#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/power/power_error_code.h"

namespace nimbo {
namespace {

constexpr const char* kApplication = "Nimbo";

// A service that has just started may not be ready for its first call.
constexpr std::chrono::seconds kRetry{5};
constexpr std::chrono::seconds kRetryLeeway{1};

constexpr std::uint32_t kNoWindow = 0;

}  // namespace

Result<std::unique_ptr<CookieInhibitor>, PowerError> CookieInhibitor::take(Loops loops, const std::string& address,
                                                                           const CookieService& service,
                                                                           const std::string& reason,
                                                                           Deadline deadline) {
  std::unique_ptr<CookieInhibitor> inhibitor(new CookieInhibitor(loops, address, service, reason));
  if (inhibitor->bus_.get() == nullptr) return tl::unexpected(PowerError{ENOTSUP});
  const auto told = [&] { return inhibitor->cookie_ || inhibitor->failure_; };
  if (!inhibitor->bus_.turnUntil(deadline, told)) return tl::unexpected(PowerError{ETIMEDOUT});
  if (!inhibitor->cookie_) return tl::unexpected(PowerError{*inhibitor->failure_});
  inhibitor->live_ = true;
  inhibitor->bus_.attach(loops.event);
  return inhibitor;
}

CookieInhibitor::CookieInhibitor(Loops loops, const std::string& address, const CookieService& service,
                                 std::string reason)
    : loops_(loops), service_(service), reason_(std::move(reason)), bus_(address) {
  ownerWatch_.emplace(bus_.get(), service_.name, [this](const std::string& owner) { ownerChanged(owner); });
}

CookieInhibitor::~CookieInhibitor() { giveBack(); }

void CookieInhibitor::ownerChanged(const std::string& owner) {
  retry_.reset();
  call_.reset();
  cookie_.reset();
  owner_ = owner;
  if (!owner.empty()) {
    inhibit();
  } else if (!live_) {
    failed(ENOTSUP);
  }
}

void CookieInhibitor::inhibit() {
  const BusMethod method{owner_.c_str(), service_.path, service_.interface, "Inhibit"};
  const BusMessage call = service_.flags != 0
                              ? methodCall(bus_.get(), method, kApplication, kNoWindow, reason_, service_.flags)
                              : methodCall(bus_.get(), method, kApplication, reason_);
  call_ = callAsync(call, [this](sd_bus_message* reply) { answered(reply); });
}

void CookieInhibitor::answered(sd_bus_message* reply) {
  std::uint32_t cookie = 0;
  if (isError(reply)) {
    failed(powerErrorCode(reply));
  } else if (sd_bus_message_read(reply, "u", &cookie) <= 0) {
    failed(EBADMSG);
  } else {
    cookie_ = cookie;
  }
}

void CookieInhibitor::failed(std::int32_t code) {
  failure_ = code;
  if (!live_) return;
  retry_ = loops_.timers.every(kRetry, kRetryLeeway, [this] {
    retry_.reset();
    inhibit();
  });
}

// Never waits: what the socket does not take at once goes with the connection, and so does the cookie. Addressed to
// whom it was got from, for the number may mean another's cookie to a service that has just started anew.
void CookieInhibitor::giveBack() const {
  if (!cookie_) return;
  const BusMessage call =
      methodCall(bus_.get(), {owner_.c_str(), service_.path, service_.interface, service_.release}, *cookie_);
  if (!call) return;
  sd_bus_message_set_expect_reply(call.get(), 0);
  sd_bus_send(bus_.get(), call.get(), nullptr);
}

}  // namespace nimbo
