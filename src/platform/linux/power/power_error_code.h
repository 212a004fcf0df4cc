// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>

namespace nimbo {

/// The code of the PowerError for a failed call: EACCES for a refusal, ETIMEDOUT for no answer,
/// ENOTSUP when there is nobody who could have answered, and so on. 0 when `reply` is no error.
[[nodiscard]] std::int32_t powerErrorCode(sd_bus_message* reply);

}  // namespace nimbo
