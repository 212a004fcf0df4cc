// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "remote_control/remote_control.h"

namespace nimbo {

/// Nobody is let in: there is no way between programs here yet.
class LocalRemoteControl final : public RemoteControl {
 public:
  void offer(RemoteControlHandlers /*handlers*/) override {}
  void awakeChanged() override {}
  void usageChanged() override {}
  void readingsChanged() override {}
};

/// So a command's own process does what it can, as where no program runs. The rest is refused, but for opening, which
/// the system itself does.
class LocalRunningProgram final : public RunningProgram {
 public:
  using Links = std::vector<std::string>;

  /// `open` hands links to the running program, or nothing but the wish to see it; false when there is none.
  explicit LocalRunningProgram(std::function<bool(const Links& links)> open) : open_(std::move(open)) {}

  [[nodiscard]] Result<AwakeStatus, RemoteError> awake() override { return unreachable(); }
  [[nodiscard]] Result<UsageStates, RemoteError> usage() override { return notRunning(); }
  [[nodiscard]] Result<SystemReadings, RemoteError> readings() override { return notRunning(); }
  [[nodiscard]] Result<void, RemoteError> watch(RemotePart /*part*/, const std::function<void()>& /*look*/) override {
    return unreachable();
  }
  [[nodiscard]] Result<void, RemoteError> start(std::optional<Time> /*until*/, bool /*keepDisplayOn*/) override {
    return unreachable();
  }
  [[nodiscard]] Result<void, RemoteError> stop() override { return unreachable(); }
  [[nodiscard]] Result<void, RemoteError> extend(std::chrono::seconds /*by*/) override { return unreachable(); }
  [[nodiscard]] Result<void, RemoteError> hold(const std::string& /*name*/, bool /*keepDisplayOn*/) override {
    return notRunning();
  }
  [[nodiscard]] Result<void, RemoteError> open(const Links& links) override {
    if (!open_(links)) return notRunning();
    return {};
  }
  [[nodiscard]] Result<void, RemoteError> act(const std::string& /*action*/) override { return unreachable(); }

 private:
  [[nodiscard]] static tl::unexpected<RemoteError> unreachable() {
    return tl::unexpected(
        RemoteError{RemoteError::Kind::unreachable,
                    "Commands cannot reach the running Nimbo on macOS; use its item in the menu bar."});
  }
  [[nodiscard]] static tl::unexpected<RemoteError> notRunning() {
    return tl::unexpected(RemoteError{RemoteError::Kind::notRunning, "Nimbo is not running."});
  }

  const std::function<bool(const Links&)> open_;
};

}  // namespace nimbo
