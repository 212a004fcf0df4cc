// SPDX-License-Identifier: MIT
#include "platform/linux/power/inhibitors.h"

#include <fcntl.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

constexpr const char* kDesktopId = "com.quellwerk.Nimbo";  // by which desktops find the name and the icon
constexpr const char* kName = "Nimbo";

// A service that has just started may not be ready for its first call.
constexpr std::chrono::seconds kRetry{5};
constexpr std::chrono::seconds kRetryLeeway{1};

constexpr std::uint32_t kNoWindow = 0;

tl::unexpected<PowerError> failure(std::int32_t code) { return tl::unexpected(PowerError{code}); }

// What libsystemd makes of the names that the bus and its libraries give their errors.
std::int32_t errorCode(sd_bus_message* reply) {
  switch (const int error = sd_bus_message_get_errno(reply)) {
    case EHOSTUNREACH:  // ServiceUnknown
    case ENXIO:         // NameHasNoOwner
    case EBADR:         // UnknownObject, UnknownInterface, UnknownMethod
      return ENOTSUP;
    default:
      return error;
  }
}

/// A cookie, given back on destruction.
class Cookie {
 public:
  Cookie(InhibitorLoops loops, const std::string& address, const CookieService& service, std::string reason)
      : loops_(loops), service_(service), reason_(std::move(reason)), bus_(nullptr, address) {
    ownerWatch_.emplace(bus_.get(), service_.name, [this](const std::string& owner) { ownerChanged(owner); });
  }
  ~Cookie() { giveBack(); }
  Cookie(const Cookie&) = delete;
  Cookie& operator=(const Cookie&) = delete;

  /// Waits for the service's answer; 0 for a cookie, which is kept from now on.
  [[nodiscard]] std::int32_t waitForAnswer(Deadline deadline) {
    if (bus_.get() == nullptr) return ENOTSUP;
    if (!bus_.turnUntil(deadline, [this] { return cookie_ || failure_ != 0; })) return ETIMEDOUT;
    if (!cookie_) return failure_;
    kept_ = true;
    sd_bus_attach_event(bus_.get(), loops_.event, SD_EVENT_PRIORITY_NORMAL);
    return 0;
  }

 private:
  void ownerChanged(const std::string& owner) {
    retry_.reset();
    call_.reset();
    cookie_.reset();
    owner_ = owner;
    if (!owner.empty()) {
      inhibit();
    } else if (!kept_) {
      failure_ = ENOTSUP;
    }
  }

  void inhibit() {
    const BusMessage call = service_.flags != 0 ? callService("Inhibit", kDesktopId, kNoWindow, reason_, service_.flags)
                                                : callService("Inhibit", kDesktopId, reason_);
    call_ = callAsync(call, [this](sd_bus_message* reply) { answered(reply); });
  }

  void answered(sd_bus_message* reply) {
    std::uint32_t cookie = 0;
    if (!isError(reply) && sd_bus_message_read(reply, "u", &cookie) > 0) {
      cookie_ = cookie;
      return;
    }
    failure_ = isError(reply) ? errorCode(reply) : EBADMSG;
    if (!kept_) return;
    retry_ = loops_.timers.every(kRetry, kRetryLeeway, [this] {
      retry_.reset();
      inhibit();
    });
  }

  // Never waits: what the socket does not take at once goes with the connection, and so does the cookie.
  void giveBack() const {
    const BusMessage call = cookie_ ? callService(service_.release, *cookie_) : BusMessage();
    if (!call) return;
    sd_bus_message_set_expect_reply(call.get(), 0);
    sd_bus_send(bus_.get(), call.get(), nullptr);
  }

  // Addressed to the process that gave the cookie: to another, the number may mean somebody else's.
  template <class... Arguments>
  [[nodiscard]] BusMessage callService(const char* method, const Arguments&... arguments) const {
    return methodCall(bus_.get(), {owner_.c_str(), service_.path, service_.interface, method}, arguments...);
  }

  const InhibitorLoops loops_;
  const CookieService service_;
  const std::string reason_;
  const SdBusConnection bus_;
  std::string owner_;  // of the service's name
  std::optional<std::uint32_t> cookie_;
  std::int32_t failure_ = 0;  // the last one
  bool kept_ = false;         // from then on it is taken again after a failure
  Subscription retry_;
  BusSlot call_;
  std::optional<BusNameWatch> ownerWatch_;
};

}  // namespace

Inhibitor takeCookie(InhibitorLoops loops, const std::string& sessionAddress, const CookieService& service,
                     const std::string& reason, Deadline deadline) {
  auto cookie = std::make_shared<Cookie>(loops, sessionAddress, service, reason);
  if (const std::int32_t code = cookie->waitForAnswer(deadline); code != 0) return failure(code);
  return Subscription([cookie = std::move(cookie)]() mutable { cookie.reset(); });
}

Inhibitor takeLogindLock(const std::string& systemAddress, const char* what, const std::string& reason,
                         Deadline deadline) {
  const SdBusConnection bus(nullptr, systemAddress);
  constexpr BusMethod kInhibit{"org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                               "Inhibit"};
  BusMessage call = methodCall(bus.get(), kInhibit, what, kName, reason, "block");
  if (!call) return failure(ENOTSUP);
  const BusMessage reply = bus.ask(std::move(call), deadline);
  if (!reply) return failure(ETIMEDOUT);
  if (isError(reply.get())) return failure(errorCode(reply.get()));
  int descriptor = -1;  // which belongs to the reply
  if (sd_bus_message_read(reply.get(), "h", &descriptor) <= 0) return failure(EBADMSG);
  auto lock = std::make_shared<UniqueFd>(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
  if (!*lock) return failure(errno);
  return Subscription([lock = std::move(lock)]() mutable { lock.reset(); });
}

}  // namespace nimbo
