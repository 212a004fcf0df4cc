// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "system/system_readings.h"
#include "usage/usage_model.h"

namespace nimbo {

/// The Keep Awake session of the running program, as others are told of it.
struct AwakeStatus {
  bool active = false;
  bool own = false;  ///< the user asked for it, and not other programs alone
  std::optional<std::chrono::system_clock::time_point>
      endsAt{};  ///< of the user's own, in whole seconds; absent for none
  bool keepsDisplayOn = false;
  std::string message{};               ///< what there is to tell besides; may be empty
  std::vector<std::string> holders{};  ///< the names of other programs that asked
  bool operator==(const AwakeStatus&) const = default;
};

/// What others may ask of the running program. What is refused is so with a sentence for the user.
struct RemoteControlHandlers {
  using Time = std::chrono::system_clock::time_point;

  std::function<AwakeStatus()> awake;
  std::function<Result<void, std::string>(std::optional<Time> until, bool keepDisplayOn)> start;
  std::function<void()> stop;
  std::function<Result<void, std::string>(std::chrono::seconds by)> extend;
  std::function<Result<std::uint32_t, std::string>(const std::string& name, bool keepDisplayOn)> hold;
  std::function<void(std::uint32_t holder)> letGo;
  std::function<const UsageStates&()> usage;
  std::function<void()> refreshUsage;
  std::function<const SystemReadings&()> readings;
};

/// How the running program is reached by other programs of the same user. Main thread only.
class RemoteControl {
 public:
  virtual ~RemoteControl() = default;

  /// Others are answered from the main loop, until this object goes. What a program holds is let go when that goes.
  virtual void offer(RemoteControlHandlers handlers) = 0;
  // These tell whoever listens what is another now, if anything.
  virtual void awakeChanged() = 0;
  virtual void usageChanged() = 0;
  virtual void readingsChanged() = 0;
};

struct RemoteError {
  enum class Kind {
    notRunning,
    unreachable,  ///< there is no session, or the program does not answer
    refused,
  };
  Kind kind = Kind::unreachable;
  std::string message;  ///< one sentence
};

/// What of the running program can be watched.
enum class RemotePart { awake, usage, readings };

/// The running program, seen from another process of the same user. Each call but `watch` waits for the answer, a
/// few seconds at most. One thread at a time.
class RunningProgram {
 public:
  using Time = std::chrono::system_clock::time_point;
  virtual ~RunningProgram() = default;

  [[nodiscard]] virtual Result<AwakeStatus, RemoteError> awake() = 0;
  /// Whether a read runs, and for how long none may, is not told.
  [[nodiscard]] virtual Result<UsageStates, RemoteError> usage() = 0;
  /// The latest only: no histories, and memory without what is cached and when it was read.
  [[nodiscard]] virtual Result<SystemReadings, RemoteError> readings() = 0;
  /// Calls `look` once, and again whenever that part may have changed or the program has come or gone. Returns when
  /// nobody reads this process's standard output any more; else with what went wrong.
  [[nodiscard]] virtual Result<void, RemoteError> watch(RemotePart part, const std::function<void()>& look) = 0;
  [[nodiscard]] virtual Result<void, RemoteError> start(std::optional<Time> until, bool keepDisplayOn) = 0;
  [[nodiscard]] virtual Result<void, RemoteError> stop() = 0;
  [[nodiscard]] virtual Result<void, RemoteError> extend(std::chrono::seconds by) = 0;
  /// For as long as this object lives.
  [[nodiscard]] virtual Result<void, RemoteError> hold(const std::string& name, bool keepDisplayOn) = 0;
  /// Links as the program's arguments have them; none shows it as a second start does.
  [[nodiscard]] virtual Result<void, RemoteError> open(const std::vector<std::string>& links) = 0;
  /// "settings" or "quit".
  [[nodiscard]] virtual Result<void, RemoteError> act(const std::string& action) = 0;
};

}  // namespace nimbo
