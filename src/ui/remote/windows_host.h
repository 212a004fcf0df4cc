// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "ui/remote/records.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The other side of RemoteUserInterface: shows on a user interface what it is sent, and tells what the user does.
/// Keeps and decides nothing. Main thread only.
class WindowsHost {
 public:
  /// `interface` outlives it. `send` takes a record to the program.
  WindowsHost(UserInterface& interface, std::function<void(const std::string& record)> send);

  /// False for a record that is malformed: the two do not understand each other.
  [[nodiscard]] bool receive(std::string_view record);

 private:
  void tell(const RecordFromWindows& record) { send_(encode(record)); }
  void makeDashboard();
  void makeSettings();
  [[nodiscard]] MainMenu toldMenu();

  void show(const SetAppearance& record);
  void show(const ShowDashboard& record);
  void show(const OpenDashboard& record);
  void show(const CloseDashboard& record);
  void show(const ShowSettings& record);
  void show(const OpenSettings& record);
  void show(const CloseSettings& record);
  void show(const OpenAlert& record);
  void show(const PresentAlert& record);
  void show(const CloseAlert& record);

  UserInterface& interface_;
  const std::function<void(const std::string& record)> send_;

  DashboardContent dashboardContent_;
  Serial dashboardSerial_ = 0;
  Serial dashboardActions_ = 0;  ///< that were told
  std::unique_ptr<DashboardWindow> dashboard_;
  SettingsWindowContent settingsContent_;
  Serial settingsSerial_ = 0;
  Serial settingsActions_ = 0;
  std::unique_ptr<SettingsWindow> settings_;
  std::map<Serial, std::unique_ptr<Alert>> alerts_;
};

}  // namespace nimbo
