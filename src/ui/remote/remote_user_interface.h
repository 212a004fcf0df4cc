// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "base/lifetime.h"
#include "platform/clock.h"
#include "platform/main_loop.h"
#include "platform/windows_process.h"
#include "ui/remote/records.h"
#include "ui/user_interface.h"

namespace nimbo {

/// Windows in a process of their own, so that none of their faults, nor the end of their display, is one of the
/// program. The process is started when a window is opened and ended a while after the last one was closed. When it
/// dies, alerts are answered as if they had been closed, and open windows come back once. One window of each kind.
class RemoteUserInterface final : public UserInterface {
 public:
  struct Services {
    MainLoop& loop;
    const Clock& clock;
    Workspace& workspace;
  };

  /// Starting takes a tenth of a second and more, so the process stays for who comes back soon.
  static constexpr std::chrono::seconds kIdleTime{60};
  /// So many deaths within so long, and it is not tried again before the time is over.
  static constexpr std::size_t kMostDeaths = 3;
  static constexpr std::chrono::seconds kDeathSpan{60};

  RemoteUserInterface(Services services, WindowsStarter start, DisplayNeed need = DisplayNeed::required);
  ~RemoteUserInterface() override;

  void setAppearance(Appearance appearance) override;
  void setMenuListener(MenuListener chosen) override { menuChosen_ = std::move(chosen); }
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override;
  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override;
  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content, AlertAnswer answered) override;

 private:
  class Window;
  template <class Content>
  class WindowOf;
  class PendingAlert;

  /// Null for one that was not made.
  [[nodiscard]] Window*& windowOf(WindowName name) { return windows_.at(static_cast<std::size_t>(name)); }
  void somethingClosed();

  /// Starts the process if there is none.
  void tell(const RecordForWindows& record);
  void tellIfRunning(const RecordForWindows& record);
  void receive(const std::string& text);
  void received(const WindowsReady& record);
  void received(const Acted& record);
  void received(const BecameKey& record);
  void received(const Closed& record);
  void received(const AlertAnswered& record);
  void received(const MenuChosen& record);

  void ended(WindowsEnd end);
  /// That no windows can be had: once in the log, and to a user who waits for one.
  void complain(WindowsEnd end);
  void letGo();
  [[nodiscard]] bool anyOpen() const;
  [[nodiscard]] bool diesTooOften() const;

  Services services_;
  const WindowsStarter start_;
  const DisplayNeed need_;
  Appearance appearance_ = Appearance::light;
  MenuListener menuChosen_;

  Serial serial_ = 0;
  std::array<Window*, 2> windows_{};
  std::map<Serial, PendingAlert*> alerts_;

  std::deque<std::chrono::duration<double>> deaths_;  ///< the last ones, in uptime
  bool mayComeBack_ = false;
  bool complained_ = false;
  Subscription idle_;
  Lifetime lifetime_;
  bool stuck_ = false;  ///< the process takes no more records
  std::unique_ptr<WindowsProcess> process_;
};

}  // namespace nimbo
