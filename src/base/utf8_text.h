// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace nimbo {

/// Whether `bytes` is well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// `bytes` as valid UTF-8: every maximal part of an ill-formed sequence becomes one U+FFFD, as
/// chapter 3.9 of the Unicode Standard recommends.
[[nodiscard]] std::string repairedUtf8(std::string_view bytes);

}  // namespace nimbo
