// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "ui/dashboard/dashboard_controller.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {

inline constexpr double kGigabyte = 1024.0 * 1024 * 1024;

inline std::uint64_t gigabytes(double count) { return static_cast<std::uint64_t>(count * kGigabyte); }

/// A machine in ordinary use, seen some minutes after the start.
inline SystemReadings sampleReadings() {
  MemorySnapshot memory;
  memory.total = gigabytes(16);
  memory.app = gigabytes(7.4);
  memory.wired = gigabytes(2.3);
  memory.compressed = gigabytes(1.5);
  memory.cached = gigabytes(3.1);
  memory.swap = gigabytes(0.6);
  memory.pressure = MemoryPressure::normal;
  SystemReadings readings;
  readings.memory = memory;
  readings.cpu = 0.23;
  for (int index = 0; index < 60; ++index) {
    readings.memoryHistory.push_back(0.62 + 0.12 * std::sin(index / 6.0) + 0.03 * std::sin(index * 1.7));
    readings.cpuHistory.push_back(0.25 + 0.2 * std::sin(index / 3.0) * std::sin(index / 3.0));
  }
  readings.memoryHistory.push_back(memory.usedFraction());
  readings.cpuHistory.push_back(*readings.cpu);
  readings.temperature = 58;
  return readings;
}

inline ProcessScan sampleProcesses(std::size_t count) {
  const std::vector<std::string> names{"firefox",     "chromium", "code",       "gnome-shell", "Isolated Web Co",
                                       "java",        "slack",    "Xorg",       "clangd",      "dockerd",
                                       "thunderbird", "spotify",  "containerd", "pipewire",    "nautilus"};
  ProcessScan scan;
  for (std::size_t index = 0; index < count; ++index) {
    const auto bytes = gigabytes(3.2 / static_cast<double>(index + 1));
    scan.processes.push_back({static_cast<std::int32_t>(1200 + 37 * index), names[index % names.size()], bytes});
  }
  return scan;
}

/// A dashboard's sources, with a session that its Keep Awake page steers as in the program.
struct SampleWorld : DashboardWorld {
  using DashboardWorld::DashboardWorld;

  /// Everything on and `processes` found by the last scan.
  void fill(DashboardController& controller, DashboardTab tab, std::size_t processes) {
    settings.setMonitorCpu(true);
    settings.setMonitorTemperature(true);
    readings = sampleReadings();
    controller.showProcesses(sampleProcesses(processes));
    controller.open(tab);
  }

  /// Lets the session tell the controller of its changes. Stays where it is.
  void connect(DashboardController& controller) {
    manager.onChange = [&controller] { controller.show(); };
  }
};

}  // namespace nimbo
