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
    listed_.push_back(pid);
    readings_[pid] = {footprint, std::move(name)};
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

  std::vector<std::int32_t> asked;  ///< identifiers in the order in which they were measured
  std::function<void()> onRead;     ///< called with each measurement, so that time may pass

 private:
  std::vector<std::int32_t> listed_;
  std::map<std::int32_t, ProcessReading> readings_;
};

}  // namespace nimbo
