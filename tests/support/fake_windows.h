// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/windows_process.h"
#include "support/fake_user_interface.h"
#include "ui/remote/windows_host.h"

namespace nimbo {

/// Processes of the windows inside the test. What goes either way waits until it is delivered.
class FakeWindows {
 public:
  /// One process, with the fake windows that it shows.
  struct Run {
    DisplayNeed need = DisplayNeed::required;
    WindowsProcess::Events events;
    std::deque<std::string> sent{};  ///< to the windows
    std::deque<std::string> told{};  ///< to the program
    FakeUserInterface interface {};
    std::unique_ptr<WindowsHost> host{};
    bool letGo = false;  ///< by the program
  };

  [[nodiscard]] WindowsStarter starter() {
    return [this](DisplayNeed need, WindowsProcess::Events events) {
      auto& run = *runs_.emplace_back(std::make_unique<Run>(Run{need, std::move(events)}));
      run.host = std::make_unique<WindowsHost>(run.interface,
                                               [&run](const std::string& record) { run.told.push_back(record); });
      return std::make_unique<Process>(*this, run);
    };
  }

  /// Everything that is under way, and what comes of it.
  void deliver() {
    while (deliverToWindows() || deliverToProgram()) {
    }
  }
  bool deliverToWindows() {
    if (!running() || last().sent.empty()) return false;
    const std::string record = std::exchange(last().sent.front(), {});
    last().sent.pop_front();
    if (!last().host->receive(record)) malformed_ = true;
    return true;
  }
  bool deliverToProgram() {
    if (!running() || last().told.empty()) return false;
    const std::string record = std::exchange(last().told.front(), {});
    last().told.pop_front();
    receive(record);
    return true;
  }
  /// A record from the windows, whoever made it.
  void receive(const std::string& record) {
    const auto received = last().events.received;
    received(record);
  }
  void end(WindowsEnd end) {
    const auto ended = last().events.ended;
    ended(end);
  }

  [[nodiscard]] bool running() const { return !runs_.empty() && !runs_.back()->letGo; }
  [[nodiscard]] std::size_t starts() const { return runs_.size(); }
  [[nodiscard]] Run& last() { return *runs_.back(); }
  [[nodiscard]] FakeMenuWindow& dashboard() { return *last().interface.windows().back(); }
  [[nodiscard]] FakeSettingsWindow& settings() { return *last().interface.settingsWindows().back(); }
  /// Whether the windows were ever sent what they do not understand.
  [[nodiscard]] bool malformed() const { return malformed_; }

  bool hasRoom = true;  ///< for another record

 private:
  class Process final : public WindowsProcess {
   public:
    Process(FakeWindows& owner, Run& run) : owner_(owner), run_(run) {}
    ~Process() override { run_.letGo = true; }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    [[nodiscard]] bool send(const std::string& record) override {
      if (owner_.hasRoom) run_.sent.push_back(record);
      return owner_.hasRoom;
    }

   private:
    FakeWindows& owner_;
    Run& run_;
  };

  std::vector<std::unique_ptr<Run>> runs_;
  bool malformed_ = false;
};

}  // namespace nimbo
