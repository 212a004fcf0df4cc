// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <utility>

#include "platform/process_table.h"

namespace nimbo {

/// Processes that the test starts, measured as it says. Records what was asked.
class FakeProcessTable final : public ProcessTable {
 public:
  void add(std::int32_t pid, std::uint64_t footprint, std::string name) {
    add(pid, {footprint, footprint}, std::move(name), footprint);
  }

  /// Without an `exact` figure it may not be looked into.
  void add(std::int32_t pid, ProcessReading reading, std::string name, std::optional<std::uint64_t> exact) {
    listed_.push_back(pid);
    readings_[pid] = reading;
    names_[pid] = std::move(name);
    if (exact) exact_[pid] = *exact;
  }

  void remove(std::int32_t pid) {
    std::erase(listed_, pid);
    readings_.erase(pid);
    names_.erase(pid);
    exact_.erase(pid);
  }

  /// Listed, but gone or not permitted when it is measured.
  void addUnreadable(std::int32_t pid) { listed_.push_back(pid); }

  [[nodiscard]] std::vector<std::int32_t> list() override { return listed_; }

  [[nodiscard]] std::optional<ProcessReading> read(std::int32_t pid) override {
    asked.push_back(pid);
    if (onRead) onRead();
    const auto found = readings_.find(pid);
    return found == readings_.end() ? std::nullopt : std::optional(found->second);
  }

  [[nodiscard]] std::optional<std::uint64_t> footprint(std::int32_t pid) override {
    measured.push_back(pid);
    const auto found = exact_.find(pid);
    return found == exact_.end() ? std::nullopt : std::optional(found->second);
  }

  [[nodiscard]] std::string name(std::int32_t pid) override {
    named.push_back(pid);
    return names_[pid];
  }

  std::vector<std::int32_t> asked;     ///< identifiers in the order in which they were read
  std::vector<std::int32_t> measured;  ///< likewise, exactly
  std::vector<std::int32_t> named;     ///< likewise, by name
  std::function<void()> onRead;        ///< called with each reading, so that time may pass

 private:
  std::vector<std::int32_t> listed_;
  std::map<std::int32_t, ProcessReading> readings_;
  std::map<std::int32_t, std::string> names_;
  std::map<std::int32_t, std::uint64_t> exact_;
};

}  // namespace nimbo
