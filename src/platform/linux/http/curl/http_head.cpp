// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/http_head.h"

#include "base/text.h"

namespace nimbo {
namespace {

constexpr std::string_view kDigits = "0123456789";

// "HTTP/1.1 200 OK" or "HTTP/2 200"; libcurl takes anything that begins like it for 200.
bool isStatusLine(std::string_view line) {
  const auto space = line.find(' ');
  if (space == std::string_view::npos) return false;
  const auto status = trimmed(line.substr(space));
  return line.find_first_not_of("HTTP/.0123456789") == space && status.size() >= 3 &&
         status.substr(0, 3).find_first_not_of(kDigits) == std::string_view::npos && status[0] != '0';
}

}  // namespace

bool HttpHead::add(std::string_view line) {
  if (line.starts_with("HTTP/")) {
    headers_.clear();
    complete_ = false;
    return isStatusLine(line);
  }
  const auto colon = line.find(':');
  if (line == "\r\n" || line == "\n") {
    complete_ = true;
  } else if (colon != std::string_view::npos && colon != 0) {
    headers_.emplace_back(lowerCased(trimmed(line.substr(0, colon))), trimmed(line.substr(colon + 1)));
  }
  return true;
}

}  // namespace nimbo
