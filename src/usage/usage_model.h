// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace nimbo {

using UsageTime = std::chrono::system_clock::time_point;

/// One limit window of a subscription.
struct UsageWindow {
  std::string title;                    ///< "5-hour", "Weekly", …
  double usedPercent = 0;               ///< 0…100 of the window's allowance
  std::optional<UsageTime> resetsAt{};  ///< absent when the provider did not say
  bool operator==(const UsageWindow&) const = default;
};

/// One successful reading of one provider.
struct UsageSnapshot {
  std::vector<UsageWindow> windows;  ///< in the reader's order, never empty
  UsageTime fetchedAt{};
  std::optional<std::string> source{};  ///< where the reading came from; absent for the web
  bool operator==(const UsageSnapshot&) const = default;
};

/// What is shown of one provider.
struct UsageState {
  bool enabled = false;
  std::optional<UsageSnapshot> snapshot{};  ///< the last good one, kept across failures
  std::optional<std::string> message{};     ///< absent when the last refresh succeeded
  bool isRefreshing = false;
  bool operator==(const UsageState&) const = default;
};

/// A failure as the user is told of it.
struct UsageError {
  std::string message;
  bool operator==(const UsageError&) const = default;
};

/// Why a reader gave no snapshot.
struct UsageReadError {
  enum class Kind {
    usage,      ///< `message` is for the user
    cancelled,  ///< nobody wants it any more; there is no message
    other,      ///< something unexpected; `message` is the system's own description
  };
  Kind kind = Kind::usage;
  std::string message{};
  bool operator==(const UsageReadError&) const = default;
};

}  // namespace nimbo
