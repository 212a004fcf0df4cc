// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/result.h"
#include "base/secret.h"
#include "base/subscription.h"

namespace nimbo {

struct HttpRequest {
  std::string url;       ///< https only
  Secret bearerToken{};  ///< who asks (RFC 6750); empty when the server need not know
  std::vector<std::pair<std::string, std::string>> headers{};
  std::chrono::seconds idleLimit{20};   ///< without a byte from the server
  std::chrono::seconds wholeLimit{30};  ///< for everything
  std::size_t bodyLimit = 1U << 20;     ///< of the answer, in bytes
};

struct HttpResponse {
  int status = 0;
  std::vector<std::pair<std::string, std::string>> headers;  ///< names in lower case, values trimmed
  std::string body;  ///< of an answer with a status below 300; it is not waited for in others

  /// The first header of that (lower-case) name.
  [[nodiscard]] std::optional<std::string> header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
      if (key == name) return value;
    }
    return std::nullopt;
  }
};

enum class HttpFailure {
  unreachable,  ///< no connection, a bad certificate, a time limit, a wanted body cut off or too large
  notHttp,      ///< something answered that does not speak HTTP
};

/// One GET at a time per call: no redirects, no cookies, no cache; certificates are verified and the
/// user's proxy settings apply. Nothing of a request is logged. Main thread only.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  using Answer = Result<HttpResponse, HttpFailure>;

  /// `done` is called once, later, from the main loop. Dropping the subscription cancels.
  [[nodiscard]] virtual Subscription get(HttpRequest request, std::function<void(Answer)> done) = 0;
};

}  // namespace nimbo
