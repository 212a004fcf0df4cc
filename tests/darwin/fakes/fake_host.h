// SPDX-License-Identifier: MIT
#pragma once

#include <mach/mach.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace nimbo {

/// The machine that the kernel's calls speak of while it lives; one at a time.
class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  /// What sysctlbyname() tells of a name.
  template <class Value>
  void setValue(const std::string& name, const Value& value) {
    values[name].resize(sizeof(value));
    std::memcpy(values[name].data(), &value, sizeof(value));
  }
  /// The kernel counts anew again.
  void passASecond();

  vm_statistics64_data_t pages{};
  std::size_t pagesWords = HOST_VM_INFO64_COUNT;  ///< that this kernel knows
  host_cpu_load_info_data_t load{};
  vm_size_t pageSize = 16384;
  std::map<std::string, std::vector<std::byte>> values;
  /// What a call answers instead, by its name.
  std::map<std::string, kern_return_t> failures;

  /// Send rights that were taken and not given back.
  [[nodiscard]] int rights() const { return rights_; }

  // The kernel's side of the calls.
  mach_port_t takeRight();
  kern_return_t giveBack(mach_port_t port);
  kern_return_t answer(const char* call, mach_port_t port) const;
  kern_return_t tell(host_flavor_t flavor, integer_t* words, mach_msg_type_number_t& count);

 private:
  struct Flavor {
    std::vector<integer_t> told;
    int fresh = 0;
  };
  std::map<host_flavor_t, Flavor> flavors_;
  int rights_ = 0;
};

}  // namespace nimbo
