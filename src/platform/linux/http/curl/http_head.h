// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbo {

/// The head of a response, put together from its lines.
class HttpHead {
 public:
  using Headers = std::vector<std::pair<std::string, std::string>>;

  /// One line as it came, with its end. A status line begins anew, because what came before it was
  /// preliminary (RFC 9110, 15.2). False for one that is none: this is not HTTP.
  [[nodiscard]] bool add(std::string_view line);

  /// Whether the empty line has come. What comes after it are trailers.
  [[nodiscard]] bool complete() const { return complete_; }
  /// Names in lower case, values trimmed.
  [[nodiscard]] Headers takeHeaders() { return std::move(headers_); }

 private:
  Headers headers_;
  bool complete_ = false;
};

}  // namespace nimbo
