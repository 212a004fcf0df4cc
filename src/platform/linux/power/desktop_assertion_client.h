// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>

#include "platform/assertion_client.h"
#include "platform/linux/power/inhibition.h"

namespace nimbo {

/// Assertions by whichever inhibitors the desktop follows: those of its session manager, of its
/// power manager and screen saver, or of logind. Which these are is found out anew for each
/// assertion, so that a desktop may start after the program or be replaced. Main thread only.
class DesktopAssertionClient final : public AssertionClient {
 public:
  explicit DesktopAssertionClient(Inhibition::Means means) : means_(std::move(means)) {}
  DesktopAssertionClient(const DesktopAssertionClient&) = delete;
  DesktopAssertionClient& operator=(const DesktopAssertionClient&) = delete;

  [[nodiscard]] Result<std::uint32_t, PowerError> create(const std::string& type, const std::string& reason) override;
  void release(std::uint32_t id) override { held_.erase(id); }

 private:
  const Inhibition::Means means_;
  std::map<std::uint32_t, std::unique_ptr<Inhibition>> held_;
  std::uint32_t lastId_ = 0;
};

}  // namespace nimbo
