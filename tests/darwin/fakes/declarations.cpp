// SPDX-License-Identifier: MIT
// Compiled against the declarations in tests/darwin/sdk/system and against macOS's own: both say this.
#include <libproc.h>
#include <mach/mach.h>
#include <sys/resource.h>
#include <sys/sysctl.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

// In words, as the kernel counts. The last one that is read ends there; later systems have more.
constexpr std::size_t wordsTo(std::size_t offset) { return offset / sizeof(integer_t) + 1; }

static_assert(HOST_VM_INFO64 == 4 && HOST_CPU_LOAD_INFO == 3 && HOST_CPU_LOAD_INFO_COUNT == 4);
static_assert(wordsTo(offsetof(vm_statistics64_data_t, wire_count)) == 4);
static_assert(wordsTo(offsetof(vm_statistics64_data_t, purgeable_count)) == 23);
static_assert(wordsTo(offsetof(vm_statistics64_data_t, compressor_page_count)) == 33);
static_assert(wordsTo(offsetof(vm_statistics64_data_t, external_page_count)) == 35);
static_assert(HOST_VM_INFO64_COUNT >= 38 && sizeof(vm_statistics64_data_t) % sizeof(integer_t) == 0);
static_assert(CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 && CPU_STATE_IDLE == 2 && CPU_STATE_NICE == 3);
static_assert(KERN_SUCCESS == 0 && MACH_PORT_NULL == 0);
static_assert(sizeof(mach_port_t) == 4 && sizeof(vm_size_t) == 8);
static_assert(std::is_same_v<decltype(&::host_page_size), kern_return_t (*)(host_t, vm_size_t*)>);
static_assert(std::is_same_v<decltype(&::host_statistics64),
                             kern_return_t (*)(host_t, host_flavor_t, host_info64_t, mach_msg_type_number_t*)>);

static_assert(sizeof(xsw_usage) == 32 && offsetof(xsw_usage, xsu_used) == 16);

static_assert(RUSAGE_INFO_V2 == 2 && sizeof(rusage_info_v2) == 160);
static_assert(offsetof(rusage_info_v2, ri_phys_footprint) == 72);
static_assert(std::is_same_v<decltype(&::proc_pid_rusage), int (*)(int, int, rusage_info_t*)>);
static_assert(std::is_same_v<decltype(&::proc_name), int (*)(int, void*, std::uint32_t)>);

}  // namespace
