// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include <cstdint>
#include <string>

#include "base/result.h"
#include "base/subscription.h"
#include "platform/assertion_client.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Something prevented until this is dropped, or why not: EACCES for a refusal, ETIMEDOUT for no answer before
/// `deadline`, ENOTSUP when there is nobody who could have answered, and so on. Nothing is left behind by a failure.
using Inhibitor = Result<Subscription, PowerError>;

/// A service of the desktop that prevents something until its cookie is given back. All of them
/// also forget a cookie when the client leaves the bus.
struct CookieService {
  const char* name;
  const char* path;
  const char* interface;
  const char* release;      ///< the method that takes a cookie back
  std::uint32_t flags = 0;  ///< what to prevent, of the session manager, the only one to ask that
};

struct InhibitorLoops {
  sd_event* event;
  MainLoop& timers;
};

/// Takes a cookie, and takes it again whenever the service starts anew. It has a bus connection of its own, so that
/// even a service that hangs cannot keep it. `loops` outlive what is held.
[[nodiscard]] Inhibitor takeCookie(InhibitorLoops loops, const std::string& sessionAddress,
                                   const CookieService& service, const std::string& reason, Deadline deadline);

/// Takes a blocking lock of systemd-logind (or elogind) on `what`: "sleep", "idle" or both, with a colon between. It
/// stays held when logind starts anew.
[[nodiscard]] Inhibitor takeLogindLock(const std::string& systemAddress, const char* what, const std::string& reason,
                                       Deadline deadline);

}  // namespace nimbo
