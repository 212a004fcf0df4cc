// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/assertion_client.h"

namespace nimbo {

/// A power service in memory that grants every assertion unless told otherwise. Records what it was
/// asked, in order: "create PreventUserIdleSystemSleep", "release PreventUserIdleSystemSleep".
class FakeAssertionClient final : public AssertionClient {
 public:
  struct Assertion {
    std::string type;
    std::string reason;
    bool operator==(const Assertion&) const = default;
  };

  [[nodiscard]] Result<std::uint32_t, PowerError> create(const std::string& type, const std::string& reason) override {
    calls.push_back("create " + type);
    if (const auto refused = refusals_.find(type); refused != refusals_.end()) {
      return tl::unexpected(PowerError{refused->second});
    }
    held_[++lastId_] = {type, reason};
    return lastId_;
  }

  void release(std::uint32_t id) override {
    const auto found = held_.find(id);
    calls.push_back("release " + (found == held_.end() ? "unknown " + std::to_string(id) : found->second.type));
    if (found != held_.end()) held_.erase(found);
  }

  [[nodiscard]] bool keepsDisplayOnToo() const override { return displayStaysOn && !held_.empty(); }
  [[nodiscard]] bool manualSleepApplies() const override { return manualSleep; }

  /// From now on every `create` of that type fails with that code; what is held stays.
  void refuse(const std::string& type, std::int32_t code) { refusals_[type] = code; }
  void grant(const std::string& type) { refusals_.erase(type); }

  /// What is held, in the order of its making.
  [[nodiscard]] std::vector<Assertion> held() const {
    std::vector<Assertion> assertions;
    for (const auto& [id, assertion] : held_) assertions.push_back(assertion);
    return assertions;
  }
  [[nodiscard]] bool holds(const std::string& type) const {
    return std::any_of(held_.begin(), held_.end(), [&](const auto& entry) { return entry.second.type == type; });
  }

  std::vector<std::string> calls;
  bool displayStaysOn = false;  ///< while anything is held
  bool manualSleep = true;      ///< applies all the same

 private:
  std::uint32_t lastId_ = 0;
  std::map<std::uint32_t, Assertion> held_;
  std::map<std::string, std::int32_t> refusals_;
};

}  // namespace nimbo
