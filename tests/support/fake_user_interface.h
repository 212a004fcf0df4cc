// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "support/fake_alert.h"
#include "support/fake_dashboard_window.h"
#include "support/fake_settings_window.h"
#include "ui/user_interface.h"

namespace nimbo {

/// An outer loop that drives the inner one as often as it is told to wait and returns at once.
class FakeOuterLoop final : public OuterLoop {
 public:
  void run(int descriptor, const std::function<void()>& dispatchPending) override {
    descriptor_ = descriptor;
    stopped_ = false;
    for (int turn = 0; turn < turns && !stopped_; ++turn) dispatchPending();
  }
  void stop() override { stopped_ = true; }

  [[nodiscard]] std::optional<int> descriptor() const { return descriptor_; }
  [[nodiscard]] bool stopped() const { return stopped_; }

  int turns = 1;

 private:
  std::optional<int> descriptor_;
  bool stopped_ = false;
};

/// A toolkit without a display: screens come and go as the test says. Subscriptions may outlive it.
class FakeUserInterface final : public UserInterface {
 public:
  [[nodiscard]] OuterLoop& loop() override { return loop_; }
  [[nodiscard]] std::vector<Screen> screens() const override { return screens_; }

  [[nodiscard]] Subscription observeScreens(std::function<void()> changed) override {
    const int id = ++lastId_;
    observers_->emplace(id, std::move(changed));
    return Subscription([weak = std::weak_ptr(observers_), id] {
      if (const auto observers = weak.lock()) observers->erase(id);
    });
  }

  [[nodiscard]] Rect toPoints(const Rect& reported) override {
    return {reported.x / scale, reported.y / scale, reported.width / scale, reported.height / scale};
  }

  void setAppearance(Appearance appearance) override { appearances_.push_back(appearance); }

  void setMainMenu(const MainMenu& menu) override { mainMenu_ = menu; }

  /// Points to the made window are kept for the test; they end with the window.
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override {
    auto window = std::make_unique<FakeDashboardWindow>();
    windows_.push_back(window.get());
    return window;
  }

  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override {
    auto window = std::make_unique<FakeSettingsWindow>();
    settingsWindows_.push_back(window.get());
    return window;
  }

  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content,
                                                 std::function<void(std::size_t button)> answered) override {
    alerts_.push_back(std::make_shared<FakeAlert>(content, std::move(answered)));
    return FakeAlert::show(alerts_.back());
  }

  void setScreens(std::vector<Screen> screens) {
    screens_ = std::move(screens);
    const auto observers = *observers_;
    for (const auto& [id, changed] : observers) {
      if (observers_->contains(id)) changed();
    }
  }

  /// How many of the bar's pixels make a point.
  double scale = 1;

  [[nodiscard]] FakeOuterLoop& fakeLoop() { return loop_; }
  [[nodiscard]] std::size_t observerCount() const { return observers_->size(); }
  [[nodiscard]] const std::vector<Appearance>& appearances() const { return appearances_; }
  [[nodiscard]] const std::vector<FakeDashboardWindow*>& windows() const { return windows_; }
  [[nodiscard]] const std::vector<FakeSettingsWindow*>& settingsWindows() const { return settingsWindows_; }
  /// Empty before one was set.
  [[nodiscard]] const MainMenu& mainMenu() const { return mainMenu_; }
  /// Every alert ever shown, the newest last.
  [[nodiscard]] const std::vector<std::shared_ptr<FakeAlert>>& alerts() const { return alerts_; }
  /// Those that are still up.
  [[nodiscard]] std::vector<std::shared_ptr<FakeAlert>> openAlerts() const {
    std::vector<std::shared_ptr<FakeAlert>> open;
    std::ranges::copy_if(alerts_, std::back_inserter(open), &FakeAlert::up);
    return open;
  }

 private:
  using Observers = std::map<int, std::function<void()>>;

  FakeOuterLoop loop_;
  std::vector<Screen> screens_{{{0, 0, 1440, 900}, {0, 24, 1440, 876}}};
  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
  int lastId_ = 0;
  std::vector<Appearance> appearances_;
  std::vector<FakeDashboardWindow*> windows_;
  std::vector<FakeSettingsWindow*> settingsWindows_;
  MainMenu mainMenu_;
  std::vector<std::shared_ptr<FakeAlert>> alerts_;
};

}  // namespace nimbo
