// SPDX-License-Identifier: MIT
#pragma once

#include "platform/linux/http/http_transfer.h"

namespace nimbo {

/// A HttpTransfer by libcurl.
[[nodiscard]] HttpClient::Answer curlTransfer(HttpRequest request, const HttpOptions& options,
                                              const std::stop_token& stop);

}  // namespace nimbo
