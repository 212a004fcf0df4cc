// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/assertion_client.h"
#include "platform/linux/display/display_modules.h"
#include "platform/linux/power/inhibitors.h"

namespace nimbo {

/// Assertions by whichever inhibitors the desktop follows: those of its session manager, of its
/// power manager and screen saver, or of logind. Which these are is found out anew for each
/// assertion, so that a desktop may start after the program or be replaced. Main thread only.
class DesktopAssertionClient final : public AssertionClient {
 public:
  struct Means {
    InhibitorLoops loops;
    std::string sessionAddress;
    std::string systemAddress;
    X11ScreenMaker makeX11Screen;
  };

  explicit DesktopAssertionClient(Means means) : means_(std::move(means)) {}

  [[nodiscard]] Result<std::uint32_t, PowerError> create(const std::string& type, const std::string& reason) override;
  void release(std::uint32_t id) override { held_.erase(id); }

 private:
  const Means means_;
  std::map<std::uint32_t, std::vector<Subscription>> held_;  // inhibitors of each assertion
  std::uint32_t lastId_ = 0;
};

}  // namespace nimbo
