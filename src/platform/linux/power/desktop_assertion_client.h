// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/assertion_client.h"
#include "platform/linux/display/display_modules.h"
#include "platform/linux/power/inhibitors.h"

namespace nimbo {

/// Assertions by whichever inhibitors the desktop follows: those of its session manager, of its
/// power manager and screen saver, or of logind. Which these are is found out anew for each
/// assertion, so that a desktop may start after the program or be replaced. Keeping the display on, too, is the only
/// way where the idle daemon heeds nothing else. Main thread only.
class DesktopAssertionClient final : public AssertionClient {
 public:
  struct Means {
    InhibitorLoops loops;
    std::string sessionAddress;
    std::string systemAddress;
    X11ScreenMaker makeX11Screen;
  };

  /// `system` is asked for systemd's version now, when there is time.
  explicit DesktopAssertionClient(Means means, sd_bus* system = nullptr);

  [[nodiscard]] Result<std::uint32_t, PowerError> create(const std::string& type, const std::string& reason) override;
  void release(std::uint32_t id) override { held_.erase(id); }
  [[nodiscard]] bool keepsDisplayOnToo() const override;
  [[nodiscard]] bool manualSleepApplies() const override;

  struct Assertion {
    std::vector<Subscription> inhibitors;
    bool keepsDisplayOnToo = false;  ///< although it is the system's
  };

 private:
  const Means means_;
  std::optional<int> systemd_;  // its version; absent where it has not told
  BusSlot versionQuery_;
  std::map<std::uint32_t, Assertion> held_;
  std::uint32_t lastId_ = 0;
};

}  // namespace nimbo
