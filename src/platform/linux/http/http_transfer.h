// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "platform/http_client.h"

namespace nimbo {

/// What holds for every request.
struct HttpOptions {
  std::string userAgent;
  std::string certificateFile;       ///< trusted authorities, as in SSL_CERT_FILE; empty for the system's
  std::string certificateFolder;     ///< the same for SSL_CERT_DIR
  std::size_t headLimit = 1U << 20;  ///< of a response, in bytes
};

/// One request. Made on the main thread, carried out on any other.
class HttpTransfer {
 public:
  virtual ~HttpTransfer() = default;

  /// Blocks until there is an answer, a limit is reached or it is cancelled. Once.
  [[nodiscard]] virtual HttpClient::Answer perform() = 0;

  /// Ends `perform` at once, whatever it waits for. Any thread.
  virtual void cancel() = 0;
};

/// The one function that the module "nimbo-http" exports, under the name kHttpTransferEntryName.
using HttpTransferEntry = HttpTransfer* (*)(HttpRequest request, const HttpOptions& options);
inline constexpr const char* kHttpTransferEntryName = "nimboMakeHttpTransfer";

}  // namespace nimbo
