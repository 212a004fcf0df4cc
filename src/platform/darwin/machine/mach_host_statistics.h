// SPDX-License-Identifier: MIT
#pragma once

#include <mach/mach.h>

#include "base/unique_handle.h"
#include "platform/host_statistics.h"

namespace nimbo {

struct PortTraits {
  using Handle = mach_port_t;
  static Handle invalid() { return MACH_PORT_NULL; }
  static void release(Handle port) { ::mach_port_deallocate(mach_task_self(), port); }
};
/// One send right of this task.
using UniquePort = UniqueHandle<PortTraits>;

/// The kernel's counters of pages and ticks, and its named values. The kernel limits how often it counts anew: a
/// reading soon after another one may be the same.
class MachHostStatistics final : public HostStatistics {
 public:
  [[nodiscard]] std::uint64_t physicalMemory() override;
  [[nodiscard]] std::optional<MemoryCounts> memory() override;
  /// 32 bits wide.
  [[nodiscard]] std::optional<CpuTicks> cpuTicks() override;

 private:
  const UniquePort host_{::mach_host_self()};
};

}  // namespace nimbo
