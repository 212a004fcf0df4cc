// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace nimbo {

inline std::string withoutField(std::string text, const std::string& field) {
  const auto start = ('\n' + text).find('\n' + field + ':');
  return text.erase(start, text.find('\n', start) + 1 - start);
}

inline std::string withField(const std::string& text, const std::string& field, std::uint64_t kilobytes) {
  return withoutField(text, field) + field + ": " + std::to_string(kilobytes) + " kB\n";
}

/// Kernel 6.18, a virtual machine without swap.
inline constexpr char kVirtualMachineMemInfo[] = R"(MemTotal:       24684084 kB
MemFree:        24404548 kB
MemAvailable:   24371736 kB
Buffers:            3844 kB
Cached:            48988 kB
SwapCached:            0 kB
Active:            15952 kB
Inactive:          36700 kB
Active(anon):       1532 kB
Inactive(anon):     7160 kB
Active(file):      14420 kB
Inactive(file):    29540 kB
Unevictable:       16684 kB
Mlocked:           15672 kB
SwapTotal:             0 kB
SwapFree:              0 kB
Zswap:                 0 kB
Zswapped:              0 kB
Dirty:               404 kB
Writeback:             0 kB
AnonPages:         16632 kB
Mapped:            10660 kB
Shmem:              8872 kB
KReclaimable:     134432 kB
Slab:             159368 kB
SReclaimable:     134432 kB
SUnreclaim:        24936 kB
KernelStack:        1436 kB
PageTables:         1632 kB
SecPageTables:         0 kB
NFS_Unstable:          0 kB
Bounce:                0 kB
WritebackTmp:          0 kB
CommitLimit:    12342040 kB
Committed_AS:      62516 kB
VmallocTotal:   34359738367 kB
VmallocUsed:       14220 kB
VmallocChunk:          0 kB
Percpu:              688 kB
AnonHugePages:         0 kB
ShmemHugePages:        0 kB
ShmemPmdMapped:        0 kB
FileHugePages:         0 kB
FilePmdMapped:         0 kB
Balloon:               0 kB
HugePages_Total:       0
HugePages_Free:        0
HugePages_Rsvd:        0
HugePages_Surp:        0
Hugepagesize:       2048 kB
Hugetlb:               0 kB
DirectMap4k:       28672 kB
DirectMap2M:     2068480 kB
DirectMap1G:    25165824 kB
)";

/// The fields of kernel 6.8 with the figures of a busy desktop: 16 GB, swap on zram and in a file
/// behind zswap, locked memory, memory of the graphics driver, and a pool of 64 huge pages.
inline constexpr char kDesktopMemInfo[] = R"(MemTotal:       16265608 kB
MemFree:         1250560 kB
MemAvailable:    5556160 kB
Buffers:          245760 kB
Cached:          4720640 kB
SwapCached:        51200 kB
Active:          6656000 kB
Inactive:        4505600 kB
Active(anon):    5120000 kB
Inactive(anon):  2048000 kB
Active(file):    1536000 kB
Inactive(file):  2457600 kB
Unevictable:      184320 kB
Mlocked:           65536 kB
SwapTotal:      12582908 kB
SwapFree:       10485756 kB
Zswap:            204800 kB
Zswapped:         819200 kB
Dirty:              1452 kB
Writeback:             0 kB
AnonPages:       6389760 kB
Mapped:          1228800 kB
Shmem:            911360 kB
KReclaimable:     512000 kB
Slab:             716800 kB
SReclaimable:     409600 kB
SUnreclaim:       307200 kB
KernelStack:       28672 kB
PageTables:       102400 kB
SecPageTables:      4096 kB
NFS_Unstable:          0 kB
Bounce:                0 kB
WritebackTmp:          0 kB
CommitLimit:    20715712 kB
Committed_AS:   18350080 kB
VmallocTotal:   34359738367 kB
VmallocUsed:      143360 kB
VmallocChunk:          0 kB
Percpu:            20480 kB
HardwareCorrupted:     0 kB
AnonHugePages:   1064960 kB
ShmemHugePages:        0 kB
ShmemPmdMapped:        0 kB
FileHugePages:         0 kB
FilePmdMapped:         0 kB
CmaTotal:          65536 kB
CmaFree:           12288 kB
Unaccepted:            0 kB
HugePages_Total:      64
HugePages_Free:       64
HugePages_Rsvd:        0
HugePages_Surp:        0
Hugepagesize:       2048 kB
Hugetlb:          131072 kB
DirectMap4k:      524288 kB
DirectMap2M:    13107200 kB
DirectMap1G:     3145728 kB
)";

/// The fields of kernel 2.6.28: no MemAvailable, Shmem, KReclaimable or Zswap.
inline constexpr char kOldKernelMemInfo[] = R"(MemTotal:        4046736 kB
MemFree:          204800 kB
Buffers:          163840 kB
Cached:          1556480 kB
SwapCached:         8192 kB
Active:          2252800 kB
Inactive:        1126400 kB
Active(anon):    1331200 kB
Inactive(anon):   327680 kB
Active(file):     921600 kB
Inactive(file):   798720 kB
Unevictable:           0 kB
Mlocked:               0 kB
SwapTotal:       2097148 kB
SwapFree:        2064380 kB
Dirty:               120 kB
Writeback:             0 kB
AnonPages:       1658880 kB
Mapped:           122880 kB
Slab:             184320 kB
SReclaimable:     143360 kB
SUnreclaim:        40960 kB
PageTables:        24576 kB
NFS_Unstable:          0 kB
Bounce:                0 kB
WritebackTmp:          0 kB
CommitLimit:     4120516 kB
Committed_AS:    2867200 kB
VmallocTotal:   34359738367 kB
VmallocUsed:      284672 kB
VmallocChunk:   34359449595 kB
HugePages_Total:       0
HugePages_Free:        0
HugePages_Rsvd:        0
HugePages_Surp:        0
Hugepagesize:       2048 kB
DirectMap4k:       10240 kB
DirectMap2M:     4182016 kB
)";

}  // namespace nimbo
