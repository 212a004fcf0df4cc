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
#include "support/fake_menu_window.h"
#include "support/fake_settings_window.h"
#include "ui/dashboard_panel.h"
#include "ui/user_interface.h"

namespace nimbo {

/// A toolkit without a display: screens come and go as the test says. Subscriptions may outlive it.
class FakeUserInterface final : public UserInterface, public Screens {
 public:
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

  [[nodiscard]] std::optional<Point> pointer() const override { return pointerPlace; }

  void setAppearance(Appearance appearance) override { appearances_.push_back(appearance); }

  void setMenuListener(MenuListener chosen) override { menuChosen_ = std::move(chosen); }

  /// Points to the made window are kept for the test; they end with the window.
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override {
    auto window = std::make_unique<FakeMenuWindow>();
    windows_.push_back(window.get());
    return std::make_unique<DashboardPanel>(std::move(window), *this);
  }

  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override {
    auto window = std::make_unique<FakeSettingsWindow>();
    settingsWindows_.push_back(window.get());
    return window;
  }

  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content, AlertAnswer answered) override {
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
  std::optional<Point> pointerPlace;

  [[nodiscard]] std::size_t observerCount() const { return observers_->size(); }
  [[nodiscard]] const std::vector<Appearance>& appearances() const { return appearances_; }
  [[nodiscard]] const std::vector<FakeMenuWindow*>& windows() const { return windows_; }
  [[nodiscard]] const std::vector<FakeSettingsWindow*>& settingsWindows() const { return settingsWindows_; }
  /// What the user chooses of the menu; whether anybody heard it.
  bool choose(MenuRole role) {
    if (menuChosen_) menuChosen_(role);
    return static_cast<bool>(menuChosen_);
  }
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

  std::vector<Screen> screens_{{{0, 0, 1440, 900}, {0, 24, 1440, 876}}};
  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
  int lastId_ = 0;
  std::vector<Appearance> appearances_;
  std::vector<FakeMenuWindow*> windows_;
  std::vector<FakeSettingsWindow*> settingsWindows_;
  MenuListener menuChosen_;
  std::vector<std::shared_ptr<FakeAlert>> alerts_;
};

}  // namespace nimbo
