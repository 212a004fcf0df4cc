// SPDX-License-Identifier: MIT
#include "platform/darwin/machine/mach_host_statistics.h"

#include <sys/sysctl.h>

#include <cstddef>
#include <cstdlib>

namespace nimbo {
namespace {

/// A value that the kernel has under a name; absent unless it is told whole.
template <class Value>
std::optional<Value> kernelValue(const char* name) {
  Value value{};
  std::size_t size = sizeof(value);
  const bool isTold = ::sysctlbyname(name, &value, &size, nullptr, 0) == 0 && size == sizeof(value);
  return isTold ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> usedSwap() {
  const auto swap = kernelValue<xsw_usage>("vm.swapusage");
  return swap ? std::optional<std::uint64_t>(swap->xsu_used) : std::nullopt;
}

MemoryPressure pressureLevel() {
  switch (kernelValue<std::uint32_t>("kern.memorystatus_vm_pressure_level").value_or(0)) {
    case 1:
      return MemoryPressure::normal;
    case 2:
      return MemoryPressure::warning;
    case 4:
      return MemoryPressure::critical;
    default:
      return MemoryPressure::unknown;
  }
}

// More bytes than 64 bits count are no memory of any machine.
std::uint64_t bytesOf(natural_t pages, vm_size_t pageSize) {
  std::uint64_t bytes = 0;
  if (__builtin_mul_overflow(std::uint64_t{pages}, std::uint64_t{pageSize}, &bytes)) std::abort();
  return bytes;
}

// The record has grown over the years, and a kernel tells what it knows: up to the last figure that is needed.
constexpr mach_msg_type_number_t kNeededWords =
    (offsetof(vm_statistics64_data_t, external_page_count) + sizeof(natural_t)) / sizeof(integer_t);

}  // namespace

std::uint64_t MachHostStatistics::physicalMemory() { return kernelValue<std::uint64_t>("hw.memsize").value_or(0); }

std::optional<MemoryCounts> MachHostStatistics::memory() {
  vm_statistics64_data_t pages{};
  mach_msg_type_number_t words = HOST_VM_INFO64_COUNT;
  const auto told = ::host_statistics64(host_.get(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&pages), &words);
  vm_size_t pageSize = 0;
  if (told != KERN_SUCCESS || words < kNeededWords) return std::nullopt;
  if (::host_page_size(host_.get(), &pageSize) != KERN_SUCCESS) return std::nullopt;
  return MemoryCounts{.wired = bytesOf(pages.wire_count, pageSize),
                      .compressor = bytesOf(pages.compressor_page_count, pageSize),
                      .active = bytesOf(pages.active_count, pageSize),
                      .inactive = bytesOf(pages.inactive_count, pageSize),
                      .purgeable = bytesOf(pages.purgeable_count, pageSize),
                      .fileBacked = bytesOf(pages.external_page_count, pageSize),
                      .swapUsed = usedSwap(),
                      .pressure = pressureLevel()};
}

std::optional<CpuTicks> MachHostStatistics::cpuTicks() {
  host_cpu_load_info_data_t load{};
  mach_msg_type_number_t words = HOST_CPU_LOAD_INFO_COUNT;
  const auto told = ::host_statistics(host_.get(), HOST_CPU_LOAD_INFO, reinterpret_cast<host_info_t>(&load), &words);
  if (told != KERN_SUCCESS || words != HOST_CPU_LOAD_INFO_COUNT) return std::nullopt;
  return CpuTicks{load.cpu_ticks[CPU_STATE_USER], load.cpu_ticks[CPU_STATE_SYSTEM], load.cpu_ticks[CPU_STATE_IDLE],
                  load.cpu_ticks[CPU_STATE_NICE]};
}

}  // namespace nimbo
