// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>

#include "base/result.h"
#include "platform/wording.h"

namespace nimbo {

/// The system refused an assertion.
struct PowerError {
  /// The return value of the system's power service: an IOReturn on macOS, an errno value on Linux.
  std::int32_t code = 0;

  /// For the user, with the code in decimal.
  [[nodiscard]] std::string description(const Wording& wording) const {
    return fmt::format("{} couldn’t keep your {} awake (error {}). Please try again.", wording.system, wording.computer,
                       code);
  }
  bool operator==(const PowerError&) const = default;
};

// The types of assertions.
inline constexpr const char* kPreventSystemSleep = "PreventUserIdleSystemSleep";
inline constexpr const char* kPreventDisplaySleep = "PreventUserIdleDisplaySleep";

/// The system's power-management service. Main thread only.
class AssertionClient {
 public:
  virtual ~AssertionClient() = default;

  /// Takes an assertion of one of the types above; `reason` is shown to whoever asks the system who
  /// keeps it awake. An identifier means that the assertion really is held. Waits for the system's
  /// answer, a few seconds at most.
  [[nodiscard]] virtual Result<std::uint32_t, PowerError> create(const std::string& type,
                                                                 const std::string& reason) = 0;

  /// Lets go of an assertion that `create` gave. Does not wait, and whatever becomes of it, the
  /// system forgets the assertion at the latest when the process ends.
  virtual void release(std::uint32_t id) = 0;

  /// Whether something that is held against the system's sleep keeps the display on as well.
  [[nodiscard]] virtual bool keepsDisplayOnToo() const { return false; }

  /// Whether the user can put the machine to sleep by hand while an assertion is held; false, too, when the system
  /// has not told.
  [[nodiscard]] virtual bool manualSleepApplies() const { return true; }
};

}  // namespace nimbo
