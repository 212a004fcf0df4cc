// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "support/fake_clock.h"

namespace nimbo {

/// An element of a made-up application.
struct FakeElement {
  std::optional<std::string> title{};
  std::optional<std::string> description{};
  std::optional<std::string> value{};
  std::vector<FakeElement> children{};
  std::function<void()> onVisit{};  ///< called when the title is asked for
};

/// Applications that stand in memory: a tree that answers, takes its time, hangs, or changes while it
/// is read.
class FakeAccessibility final : public Accessibility {
 public:
  explicit FakeAccessibility(FakeClock& clock) : clock_(clock) {}

  [[nodiscard]] bool isTrusted() override {
    log.emplace_back("trusted?");
    return trusted;
  }

  void requestTrust() override {
    log.emplace_back("request trust");
    trusted = trusted || grantsTrust;
  }

  [[nodiscard]] std::unique_ptr<AccessibleApplication> application(const std::string& bundleIdentifier) override {
    log.push_back("application " + bundleIdentifier);
    if (bundleIdentifier != running) return nullptr;
    return std::make_unique<Application>(*this);
  }

  bool trusted = true;
  bool grantsTrust = true;                                 ///< what the user does when asked
  std::string running = "com.anthropic.claudefordesktop";  ///< the one that runs; none ends it
  std::vector<FakeElement> windows;
  std::optional<std::vector<FakeElement>> content;  ///< the windows after `exposeContent`
  std::chrono::milliseconds perCall{0};             ///< what each call for an element takes
  bool hangs = false;                               ///< every call takes as long as is allowed and tells nothing

  std::vector<std::string> log;  ///< calls, but those to elements
  int visited = 0;               ///< elements whose title was asked for

 private:
  class Element final : public AccessibleElement {
   public:
    Element(FakeAccessibility& owner, const FakeElement& element) : owner_(owner), element_(element) {}

    [[nodiscard]] std::optional<std::string> title() override {
      ++owner_.visited;
      if (element_.onVisit) element_.onVisit();
      return owner_.answers() ? element_.title : std::nullopt;
    }
    [[nodiscard]] std::optional<std::string> description() override {
      return owner_.answers() ? element_.description : std::nullopt;
    }
    [[nodiscard]] std::optional<std::string> value() override {
      return owner_.answers() ? element_.value : std::nullopt;
    }
    [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) override {
      if (!owner_.answers()) return {};
      return owner_.elements(element_.children, limit);
    }

   private:
    FakeAccessibility& owner_;
    const FakeElement element_;  // a copy: the tree may change meanwhile
  };

  class Application final : public AccessibleApplication {
   public:
    explicit Application(FakeAccessibility& owner) : owner_(owner) {}

    void setMessagingTimeout(std::chrono::milliseconds limit) override {
      owner_.limit_ = limit;
      owner_.log.push_back("timeout " + std::to_string(limit.count()) + " ms");
    }
    void exposeContent(const std::stop_token& /*stop*/) override {
      owner_.log.emplace_back("expose");
      if (owner_.content) owner_.windows = *owner_.content;
    }
    [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) override {
      owner_.log.emplace_back("windows");
      if (owner_.running.empty()) return {};
      return owner_.elements(owner_.windows, limit);
    }

   private:
    FakeAccessibility& owner_;
  };

  bool answers() {
    if (running.empty()) return false;
    clock_.advance(hangs ? limit_ : std::min(perCall, limit_));
    return !hangs && perCall < limit_;
  }

  std::vector<std::unique_ptr<AccessibleElement>> elements(const std::vector<FakeElement>& some, std::size_t limit) {
    std::vector<std::unique_ptr<AccessibleElement>> made;
    for (const auto& element : some) {
      if (made.size() < limit) made.push_back(std::make_unique<Element>(*this, element));
    }
    return made;
  }

  FakeClock& clock_;
  std::chrono::milliseconds limit_{std::chrono::seconds(6)};  // the system's own
};

}  // namespace nimbo
