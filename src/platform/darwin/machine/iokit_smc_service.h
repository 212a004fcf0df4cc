// SPDX-License-Identifier: MIT
#pragma once

#include "system/smc_connection.h"

namespace nimbo {

/// The system management controller through its kernel service.
class IokitSmcService final : public SmcService {
 public:
  [[nodiscard]] std::unique_ptr<SmcConnection> open() override;
  [[nodiscard]] std::string cpuBrand() override;
};

}  // namespace nimbo
