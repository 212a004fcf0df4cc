// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <set>
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
  bool openApplication(const std::string& bundleIdentifier) override {
    applicationsOpened.push_back(bundleIdentifier);
    return installed.contains(bundleIdentifier);
  }
  void revealFile(const std::filesystem::path& file) override { filesRevealed.push_back(file); }

  void notify(const std::string& title, const std::string& text) override { notices.emplace_back(title, text); }

  void setAppearance(Appearance appearance) {
    appearance_ = appearance;
    const auto observers = observers_;
    for (const auto& [id, changed] : observers) changed(appearance);
  }

  bool systemMonitor = true;
  int monitorsOpened = 0;
  std::vector<std::string> linksOpened;
  std::set<std::string> installed{"com.anthropic.claudefordesktop"};  ///< bundle identifiers
  std::vector<std::string> applicationsOpened;                        ///< also the ones that are not installed
  std::vector<std::filesystem::path> filesRevealed;
  std::vector<std::pair<std::string, std::string>> notices;  ///< title and text

 private:
  Appearance appearance_ = Appearance::light;
  int lastId_ = 0;
  std::map<int, std::function<void(Appearance)>> observers_;
};

}  // namespace nimbo
