// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/platform_services.h"
#include "ui/user_interface.h"

namespace nimbo {

class AppDelegate;

/// Takes a running program through its stages (idle, dashboard loaded, session running), tells what
/// each has cost and quits. Main thread; part of one run of the main loop.
class PerformanceProbe {
 public:
  /// Gets each line without its end.
  using Print = std::function<void(const std::string& line)>;

  /// Both outlive the probe. `complain` gets what kept a stage from being reached.
  PerformanceProbe(PlatformServices& platform, AppDelegate& delegate, Print print, Print complain);

  /// The first stage comes two seconds later.
  void start();

  /// Whether the last stage came without a session, so that its line tells of none.
  [[nodiscard]] bool sessionFailed() const { return sessionFailed_; }

 private:
  struct Sample {
    ResourceUsage usage;
    std::chrono::duration<double> uptime;
  };

  void next(std::chrono::milliseconds delay, void (PerformanceProbe::*stage)());
  [[nodiscard]] Sample sample() const;
  void printMemory(const char* label) const;
  void measureIdle();
  void loadDashboard();
  void startSession();
  void finish();

  PlatformServices& platform_;
  AppDelegate& delegate_;
  Print print_;
  Print complain_;
  Sample idleStart_;
  bool sessionFailed_ = false;
  Subscription timer_;
};

/// Runs the whole program over a throw-away settings domain until the probe ends it; the exit status, which is 1 when
/// it could not be done or without a session.
[[nodiscard]] int runPerformanceProbe(PlatformServices& platform, UserInterface& windows, PerformanceProbe::Print print,
                                      PerformanceProbe::Print complain);

}  // namespace nimbo
