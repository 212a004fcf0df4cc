// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace nimbo {

/// Whether `text` is a URL (RFC 3986) with a host whose scheme is exactly "https".
[[nodiscard]] bool isHttpsUrl(std::string_view text);

}  // namespace nimbo
