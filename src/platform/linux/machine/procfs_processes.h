// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/linux/files/unique_fd.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/process_table.h"

namespace nimbo {

/// What a /proc/PID/status tells; 0 and empty for what is not told. Bytes.
struct ProcessStatus {
  std::string name;  ///< empty without a footprint
  /// Anonymous memory and its swap; kernels before 4.5 do not tell it and all resident memory stands in for
  /// it. Kernel threads and zombies have none.
  std::uint64_t footprint = 0;
  std::uint64_t most = 0;  ///< with shared memory and huge pages, as if all of it were the process's alone
  std::uint64_t resident = 0;
};

[[nodiscard]] ProcessStatus parseProcessStatus(std::string_view text);

/// Pages in a /proc/PID/statm.
struct ProcessPages {
  std::uint64_t anonymous = 0;  ///< the resident ones less those that belong to files and shared memory
  std::uint64_t resident = 0;
};
/// Absent for other text.
[[nodiscard]] std::optional<ProcessPages> parseProcessPages(std::string_view text);

/// Bytes out of a /proc/PID/smaps_rollup: the process's share of anonymous memory, of shared memory (memfd, shm) and
/// of both in swap, where each page counts in equal parts for all who have it; and huge pages that nobody else has,
/// as their other parts are not told. Absent for other text and from kernels before 5.4, which do not tell them apart.
[[nodiscard]] std::optional<std::uint64_t> parseFootprint(std::string_view text);

/// The processes that /proc shows to this user. What a process has in swap and in huge pages is told by its status
/// file alone, which costs more than the two files that tell the rest; it is read only while there are any, and of
/// large processes.
class ProcfsProcessTable final : public ProcessTable {
 public:
  explicit ProcfsProcessTable(std::string procRoot = "/proc");

  [[nodiscard]] std::vector<std::int32_t> list() override;
  [[nodiscard]] std::optional<ProcessReading> read(std::int32_t pid) override;
  [[nodiscard]] std::optional<std::uint64_t> footprint(std::int32_t pid) override;
  /// As the command's file is called, if that begins with what is left of the name, or if the name is only that of
  /// the memory that the program was started from.
  [[nodiscard]] std::string wholeName(std::int32_t pid, std::string name) override;

 private:
  [[nodiscard]] std::optional<ProcessReading> readStatus(std::int32_t pid) const;
  [[nodiscard]] std::optional<ProcessReading> readResident(std::int32_t pid) const;
  [[nodiscard]] std::optional<std::string_view> readFile(std::int32_t pid, std::string_view name,
                                                         std::span<char> buffer) const;

  std::string root_;
  UniqueFd folder_;  // paths relative to it save the kernel a step
  ProcFile memInfo_;
  bool statusNeeded_ = true;  // as of the last list
};

/// What /proc and the kernel's accounting say of this process, and of the one that shows its windows, if there is one,
/// together. The footprint is private memory with what is swapped out of it; memory as it is now, CPU time of finished
/// threads included. Absent when they do not tell. Any thread.
[[nodiscard]] std::optional<ResourceUsage> readOwnUsage(std::optional<pid_t> windows = {},
                                                        const std::string& procRoot = "/proc");

}  // namespace nimbo
