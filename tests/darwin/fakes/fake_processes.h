// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace nimbo {

/// The processes that the kernel's calls speak of while it lives; one at a time. The kernel's own entry is listed, too.
class FakeProcesses {
 public:
  struct Process {
    std::string name;
    std::uint64_t footprint = 0;  ///< bytes
    std::uint64_t resident = 0;
    bool isOurs = true;  ///< else it may not be measured
  };

  FakeProcesses();
  ~FakeProcesses();
  FakeProcesses(const FakeProcesses&) = delete;
  FakeProcesses& operator=(const FakeProcesses&) = delete;

  std::map<std::int32_t, Process, std::greater<>> running;  ///< the youngest first, as the kernel has them
  std::function<void()> onCounted;                          ///< before they are listed
  bool isListed = true;
  bool isThisMachine = false;  ///< the lists are of the processes that really run
};

}  // namespace nimbo
