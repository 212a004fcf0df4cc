// SPDX-License-Identifier: MIT
#pragma once

#include <stop_token>
#include <string>

#include "platform/http_client.h"

namespace nimbo {

/// What holds for every request.
struct HttpOptions {
  std::string userAgent;
  std::string certificateFile;    ///< trusted authorities, as in SSL_CERT_FILE; empty for the system's
  std::string certificateFolder;  ///< the same for SSL_CERT_DIR
};

/// The one function that the module "nimbo-http" exports, under the name kHttpTransferName. Carries out
/// a request: blocks until there is an answer, a limit is reached or it is asked to stop. Any thread.
using HttpTransfer = void (*)(HttpRequest request, const HttpOptions& options, const std::stop_token& stop,
                              HttpClient::Answer& answer);
inline constexpr const char* kHttpTransferName = "nimboHttpTransfer";

}  // namespace nimbo
