// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/workspace.h"

namespace nimbo {

/// A desktop whose appearance the test sets.
class FakeWorkspace final : public Workspace {
 public:
  [[nodiscard]] Appearance appearance() const override { return appearance_; }
  [[nodiscard]] Subscription observeAppearance(std::function<void(Appearance)> changed) override {
    const int id = ++lastId_;
    observers_[id] = std::move(changed);
    return Subscription([this, id] { observers_.erase(id); });
  }
  [[nodiscard]] bool hasSystemMonitor() const override { return systemMonitor; }
  [[nodiscard]] bool openSystemMonitor() override {
    ++monitorsOpened;
    return systemMonitor;
  }

  void openLink(const std::string& url) override { linksOpened.push_back(url); }

  void setAppearance(Appearance appearance) {
    appearance_ = appearance;
    const auto observers = observers_;
    for (const auto& [id, changed] : observers) changed(appearance);
  }

  bool systemMonitor = true;
  int monitorsOpened = 0;
  std::vector<std::string> linksOpened;

 private:
  Appearance appearance_ = Appearance::light;
  int lastId_ = 0;
  std::map<int, std::function<void(Appearance)>> observers_;
};

}  // namespace nimbo
