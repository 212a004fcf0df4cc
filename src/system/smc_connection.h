// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace nimbo {

/// The request and reply record of the system management controller's kernel service.
using SmcRecord = std::array<std::uint8_t, 80>;

struct SmcReply {
  std::int32_t returnCode = 0;  ///< of the kernel call; 0 is success
  std::size_t size = 0;         ///< bytes of `record` that the service filled
  SmcRecord record{};
};

/// An open connection to the controller, closed by its destructor. One thread at a time.
class SmcConnection {
 public:
  virtual ~SmcConnection() = default;

  [[nodiscard]] virtual SmcReply call(const SmcRecord& request) = 0;
};

/// Where connections come from.
class SmcService {
 public:
  virtual ~SmcService() = default;

  /// Null when the machine has no controller or does not let it be opened.
  [[nodiscard]] virtual std::unique_ptr<SmcConnection> open() = 0;

  /// The processor's marketing name; empty when it cannot be read.
  [[nodiscard]] virtual std::string cpuBrand() = 0;
};

}  // namespace nimbo
