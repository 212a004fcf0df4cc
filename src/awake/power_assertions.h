// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "platform/assertion_client.h"

namespace nimbo {

/// Holds the assertion that keeps the machine from idle sleep and, on request, the one that keeps
/// its display on; the second never without the first. Whatever is still held goes with the object.
/// Main thread only.
class PowerAssertions {
 public:
  /// Both outlive it.
  PowerAssertions(AssertionClient& client, const Wording& wording) : client_(client), wording_(wording) {}
  PowerAssertions(const PowerAssertions&) = delete;
  PowerAssertions& operator=(const PowerAssertions&) = delete;
  ~PowerAssertions() { deactivate(); }

  [[nodiscard]] bool isActive() const { return systemId_.has_value(); }
  [[nodiscard]] bool keepsDisplayOn() const { return displayId_.has_value(); }

  /// Brings what is held to the requested state; may be called again to change the display's part
  /// alone. A failed call leaves everything as it was before.
  [[nodiscard]] Result<void, PowerError> activate(bool keepDisplayOn);
  void deactivate();

 private:
  [[nodiscard]] Result<void, PowerError> holdDisplay();
  void releaseDisplay();

  AssertionClient& client_;
  const Wording& wording_;
  std::optional<std::uint32_t> systemId_;
  std::optional<std::uint32_t> displayId_;
};

}  // namespace nimbo
