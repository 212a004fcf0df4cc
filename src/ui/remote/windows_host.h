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
  template <class Content>
  struct Hosted {
    WindowName name;
    std::unique_ptr<ContentWindow<Content>> (UserInterface::*make)();
    std::unique_ptr<ContentWindow<Content>> window = {};
    Content content = {};
    Serial serial = 0;   ///< of the last opening
    Serial actions = 0;  ///< that were told
  };

  void tell(const RecordFromWindows& record) { send_(encode(record)); }
  /// Makes it where it is not there yet.
  [[nodiscard]] auto& windowOf(auto& hosted);
  void showContent(auto& hosted, const auto& record);
  void open(auto& hosted, const Open& record);

  void receive(const SetAppearance& record) { interface_.setAppearance(record.appearance); }
  void receive(const Show<DashboardContent>& record) { showContent(dashboard_, record); }
  void receive(const Show<SettingsWindowContent>& record) { showContent(settings_, record); }
  void receive(const Open& record);
  void receive(const Close& record);
  void receive(const OpenAlert& record);
  void receive(const PresentAlert& record);
  void receive(const CloseAlert& record) { alerts_.erase(record.serial); }

  UserInterface& interface_;
  const std::function<void(const std::string& record)> send_;
  Hosted<DashboardContent> dashboard_{WindowName::dashboard, &UserInterface::makeDashboardWindow};
  Hosted<SettingsWindowContent> settings_{WindowName::settings, &UserInterface::makeSettingsWindow};
  std::map<Serial, std::unique_ptr<Alert>> alerts_;
};

}  // namespace nimbo
