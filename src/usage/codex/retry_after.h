// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace nimbo {

/// How long a service that limits its requests must be left alone. `header` is its Retry-After, of
/// which only a number of seconds counts; never less than ten minutes.
[[nodiscard]] std::chrono::seconds rateLimitWait(const std::optional<std::string>& header);

}  // namespace nimbo
