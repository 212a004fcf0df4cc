// SPDX-License-Identifier: MIT
#pragma once

#include <tl/expected.hpp>

namespace nimbo {

/// The outcome of something that may fail in expected ways. Functions that return one are
/// marked [[nodiscard]]; the error type says what the caller can do about it.
template <class Value, class Error>
using Result = tl::expected<Value, Error>;

}  // namespace nimbo
