// SPDX-License-Identifier: MIT
#pragma once

#include "platform/process_table.h"

namespace nimbo {

/// The processes that the kernel lists. Those of other users may not be measured.
class LibprocProcessTable final : public ProcessTable {
 public:
  [[nodiscard]] std::vector<std::int32_t> list() override;
  /// The kernel keeps account of each footprint, so that this one is exact already.
  [[nodiscard]] std::optional<ProcessReading> read(std::int32_t pid) override;
  [[nodiscard]] std::optional<std::uint64_t> footprint(std::int32_t pid) override;
  [[nodiscard]] std::string name(std::int32_t pid) override;
};

/// What the kernel's accounting says of this process; absent when it does not tell. Any thread.
[[nodiscard]] std::optional<ResourceUsage> readOwnUsage();

}  // namespace nimbo
