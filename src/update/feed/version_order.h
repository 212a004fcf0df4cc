// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace nimbo {

/// Whether `text` is numbers with dots between them, such as "1.10.2". The numbers may be of any length.
[[nodiscard]] bool isVersion(std::string_view text);

/// Number by number; missing ones count as 0. False also when either is no version: what cannot be
/// compared is not newer.
[[nodiscard]] bool isNewerVersion(std::string_view candidate, std::string_view than);

}  // namespace nimbo
