// SPDX-License-Identifier: MIT
#pragma once

#include "platform/assertion_client.h"

namespace nimbo {

/// Assertions of IOKit, whose types are those of the interface.
class IokitAssertionClient final : public AssertionClient {
 public:
  [[nodiscard]] Result<std::uint32_t, PowerError> create(const std::string& type, const std::string& reason) override;
  void release(std::uint32_t id) override;
};

}  // namespace nimbo
