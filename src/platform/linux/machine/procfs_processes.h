// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/machine/proc_file.h"
#include "platform/posix/files/unique_fd.h"
#include "platform/process_table.h"

namespace nimbo {

/// What a /proc/PID/status tells; 0 and empty for what is not told. Bytes.
struct ProcessStatus {
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
  std::uint64_t size = 0;  ///< of the address space; 0 without one, as kernel threads and zombies are
  bool operator==(const ProcessPages&) const = default;
};
/// Absent for other text.
[[nodiscard]] std::optional<ProcessPages> parseProcessPages(std::string_view text);

struct ProcessFootprint {
  std::uint64_t bytes = 0;
  bool alone = false;  ///< nobody else has any of it, or can without being born of the process
};
/// Out of a /proc/PID/smaps_rollup: the process's share of anonymous memory, of shared memory (memfd, shm) and of both
/// in swap, where each page counts in equal parts for all who have it; and huge pages that nobody else has, as their
/// other parts are not told. Absent for other text and from kernels before 5.4, which do not tell them apart.
[[nodiscard]] std::optional<ProcessFootprint> parseFootprint(std::string_view text);

/// The processes that /proc shows to this user. A process's statm, its cheapest file, stays open and tells whether
/// what was read of it before still holds: its status, which alone tells what it has in swap, in huge pages and of what
/// kind the many pages of a large process are; and its exact footprint, which the kernel counts page by page. That of a
/// process with all its memory to itself is another only when its pages are, or when somebody is born who may share
/// them. Up to half of the descriptors that this process may have stay open, until the table goes.
class ProcfsProcessTable final : public ProcessTable {
 public:
  explicit ProcfsProcessTable(std::string procRoot = "/proc");

  /// By ascending identifier.
  [[nodiscard]] std::vector<std::int32_t> list() override;
  [[nodiscard]] std::optional<ProcessReading> read(std::int32_t pid) override;
  [[nodiscard]] std::optional<std::uint64_t> footprint(std::int32_t pid) override;
  /// As the command's file is called, if that begins with what is left of the name, or if the name is only that of
  /// the memory that the program was started from.
  [[nodiscard]] std::string name(std::int32_t pid) override;

 private:
  struct Known {
    UniqueFd statm;  // of this very process, whoever has its number later
    ProcessPages pages;
    ProcessReading reading;       // of when it had these pages,
    std::uint64_t footprint = 0;  // and its exact footprint, if that is its alone,
    std::uint64_t births = 0;     // as long as there were no more births than these
  };

  [[nodiscard]] std::optional<ProcessReading> readingOf(std::int32_t pid, const ProcessPages& pages) const;
  [[nodiscard]] UniqueFd open(std::int32_t pid, std::string_view name) const;

  std::string root_;
  UniqueFd folder_;  // paths relative to it save the kernel a step
  ProcFile memInfo_;
  bool statusNeeded_ = true;  // as of the last list
  std::vector<std::int32_t> listed_;
  std::uint64_t births_ = 1;  // how often there was somebody new
  std::map<std::int32_t, Known> known_;
  std::size_t mostKnown_;
};

/// What /proc and the kernel's accounting say of this process, and of the one that shows its windows, if there is one,
/// together. The footprint is private memory with what is swapped out of it; memory as it is now, CPU time of finished
/// threads included. Absent when they do not tell. Any thread.
[[nodiscard]] std::optional<ResourceUsage> readOwnUsage(std::optional<pid_t> windows = {},
                                                        const std::string& procRoot = "/proc");

}  // namespace nimbo
