// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform/http_client.h"
#include "platform/main_loop.h"

namespace nimbo {

/// Requests by the system's URL loading, each in an ephemeral session of its own, which keeps nothing. Main thread
/// only. `loop` outlives it.
[[nodiscard]] std::unique_ptr<HttpClient> makeUrlSessionHttpClient(MainLoop& loop);

}  // namespace nimbo
