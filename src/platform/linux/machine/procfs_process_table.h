// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/linux/files/unique_fd.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/process_table.h"

namespace nimbo {

/// The processes that /proc shows to this user. What a process has in swap is told by its status file
/// alone, which costs more than the two files that tell the rest; it is read only while swap is in use.
class ProcfsProcessTable final : public ProcessTable {
 public:
  explicit ProcfsProcessTable(std::string procRoot = "/proc");

  [[nodiscard]] std::vector<std::int32_t> list() override;
  [[nodiscard]] std::optional<ProcessReading> read(std::int32_t pid) override;

 private:
  [[nodiscard]] bool swapInUse();
  [[nodiscard]] std::optional<ProcessReading> readStatus(std::int32_t pid) const;
  [[nodiscard]] std::optional<ProcessReading> readResident(std::int32_t pid) const;
  [[nodiscard]] std::optional<std::string_view> readFile(std::int32_t pid, std::string_view name,
                                                         std::span<char> buffer) const;

  std::string root_;
  UniqueFd folder_;  // paths relative to it save the kernel a step
  ProcFile memInfo_;
  bool statusNeeded_ = true;  // as of the last list
};

}  // namespace nimbo
