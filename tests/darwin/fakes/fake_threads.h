// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

namespace nimbo {

/// That the calling thread has asked for; 0 before.
[[nodiscard]] qos_class_t classOfThisThread();

}  // namespace nimbo
