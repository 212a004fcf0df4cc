// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/bus/sd_bus_calls.h"
#include "remote_control/remote_control.h"

namespace nimbo {

/// The running program by its name on the session bus; it is never started. One thread at a time.
class DbusRunningProgram final : public RunningProgram {
 public:
  /// `limit` is for each answer.
  explicit DbusRunningProgram(const std::string& address, std::chrono::milliseconds limit = std::chrono::seconds(5))
      : session_(nullptr, address), limit_(limit) {}

  [[nodiscard]] Result<AwakeStatus, RemoteError> awake() override;
  [[nodiscard]] Result<UsageStates, RemoteError> usage() override;
  [[nodiscard]] Result<SystemReadings, RemoteError> readings() override;
  [[nodiscard]] Result<void, RemoteError> watch(RemotePart part, const std::function<void()>& look) override;
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
  template <class Value>
  [[nodiscard]] Result<Value, RemoteError> properties(const char* interface);
  const SdBusConnection session_;
  const std::chrono::milliseconds limit_;
};

}  // namespace nimbo
