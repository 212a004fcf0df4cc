// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

#include "ui/dashboard/awake_view_fixture.h"
#include "ui/dashboard/dashboard_controller.h"

namespace nimbo {

inline constexpr double kGigabyte = 1024.0 * 1024 * 1024;

inline std::uint64_t gigabytes(double count) { return static_cast<std::uint64_t>(count * kGigabyte); }

/// A machine in ordinary use, seen some minutes after the start.
inline ResourcesSample sampleReadings() {
  ResourcesSample sample;
  MemorySnapshot memory;
  memory.total = gigabytes(16);
  memory.app = gigabytes(7.4);
  memory.wired = gigabytes(2.3);
  memory.compressed = gigabytes(1.5);
  memory.cached = gigabytes(3.1);
  memory.swap = gigabytes(0.6);
  memory.pressure = MemoryPressure::normal;
  sample.memory = memory;
  sample.cpu = 0.23;
  for (int index = 0; index < 60; ++index) {
    sample.memoryHistory.push_back(0.62 + 0.12 * std::sin(index / 6.0) + 0.03 * std::sin(index * 1.7));
    sample.cpuHistory.push_back(0.25 + 0.2 * std::sin(index / 3.0) * std::sin(index / 3.0));
  }
  sample.memoryHistory.push_back(memory.usedFraction());
  sample.cpuHistory.push_back(*sample.cpu);
  return sample;
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

inline DashboardPreferences samplePreferences(DashboardTab tab) {
  DashboardPreferences preferences;
  preferences.lastDashboardTab = tab;
  preferences.monitorCpu = true;
  preferences.monitorTemperature = true;
  return preferences;
}

/// The controller with everything on and `processes` found by the last scan.
inline void fillDashboard(DashboardController& controller, DashboardTab tab, std::size_t processes) {
  controller.apply(samplePreferences(tab));
  controller.update(sampleReadings());
  controller.updateProcesses(sampleProcesses(processes));
  controller.updateTemperature(58);
}

/// A Keep Awake page with the session that it steers, connected to each other as in the program.
struct SampleAwakePage : AwakeViewWorld {
  /// Stays where it is: `controller` calls it.
  void connect(DashboardController& controller) {
    AwakeView& view = controller.awakeView();
    view.onToggle = [this](std::optional<AwakeView::Time> end) {
      if (manager.isActive()) {
        manager.stopByUser();
      } else {
        static_cast<void>(manager.start(end, settings.awakeDisplayOn(), clock.now()));
      }
    };
    view.onDisplay = [this](bool on) {
      if (!manager.isActive() || manager.setKeepDisplayOn(on)) settings.setAwakeDisplayOn(on);
    };
    view.onExtend = [this] { manager.extend(std::chrono::minutes(30)); };
    manager.onChange = [this, &view] { view.refresh(manager); };
    view.refresh(manager);
  }
};

}  // namespace nimbo
