// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/result.h"
#include "base/subscription.h"
#include "platform/assertion_client.h"
#include "platform/linux/bus/bounded_bus.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/main_loop.h"

namespace nimbo {

/// A service of the desktop that prevents something until its cookie is given back. All of them
/// also forget a cookie when the client leaves the bus.
struct CookieService {
  const char* name;
  const char* path;
  const char* interface;
  const char* release;      ///< the method that takes a cookie back
  std::uint32_t flags = 0;  ///< what to prevent, of the session manager, the only one to ask that
};

/// A cookie, given back on destruction. It has a bus connection of its own, so that even a service
/// that hangs cannot keep it. When the service starts anew, it is taken again. Main thread only.
class CookieInhibitor {
 public:
  struct Loops {
    sd_event* event;
    MainLoop& timers;
  };

  /// Waits for the service's answer; nothing is left behind when none comes before `deadline`.
  /// `loops` outlive the object.
  [[nodiscard]] static Result<std::unique_ptr<CookieInhibitor>, PowerError> take(Loops loops,
                                                                                 const std::string& address,
                                                                                 const CookieService& service,
                                                                                 const std::string& reason,
                                                                                 Deadline deadline);
  ~CookieInhibitor();
  CookieInhibitor(const CookieInhibitor&) = delete;
  CookieInhibitor& operator=(const CookieInhibitor&) = delete;

 private:
  CookieInhibitor(Loops loops, const std::string& address, const CookieService& service, std::string reason);

  void ownerChanged(const std::string& owner);
  void inhibit();
  void answered(sd_bus_message* reply);
  void failed(std::int32_t code);
  void giveBack() const;

  const Loops loops_;
  const CookieService service_;
  const std::string reason_;
  BoundedBus bus_;
  std::string owner_;  // of the service's name
  std::optional<std::uint32_t> cookie_;
  std::optional<std::int32_t> failure_;  // the last answer's, until there is a cookie
  bool live_ = false;                    // once taken, failures are made good
  Subscription retry_;
  BusSlot call_;
  std::optional<BusNameWatch> ownerWatch_;
};

}  // namespace nimbo
