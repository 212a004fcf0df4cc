// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/remote_control.h"

namespace nimbo {

/// The running program by its name on the session bus; it is never started. One thread at a time.
class DbusRunningProgram final : public RunningProgram {
 public:
  /// `limit` is for each answer.
  explicit DbusRunningProgram(const std::string& address, std::chrono::milliseconds limit = std::chrono::seconds(5))
      : session_(nullptr, address), limit_(limit) {}

  [[nodiscard]] Result<AwakeStatus, RemoteError> awake() override;
  [[nodiscard]] Result<void, RemoteError> start(std::optional<Time> until, bool keepDisplayOn) override;
  [[nodiscard]] Result<void, RemoteError> stop() override;
  [[nodiscard]] Result<void, RemoteError> extend(std::chrono::seconds by) override;
  [[nodiscard]] Result<void, RemoteError> hold(const std::string& name, bool keepDisplayOn) override;
  [[nodiscard]] Result<void, RemoteError> open(const std::vector<std::string>& links) override;
  [[nodiscard]] Result<void, RemoteError> act(const std::string& action) override;

 private:
  template <class... Arguments>
  [[nodiscard]] Result<BusMessage, RemoteError> call(const char* interface, const char* member,
                                                     const Arguments&... arguments);

  const SdBusConnection session_;
  const std::chrono::milliseconds limit_;
};

}  // namespace nimbo
