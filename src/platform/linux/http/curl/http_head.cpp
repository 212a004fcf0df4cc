// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/http_head.h"

#include <algorithm>

namespace nimbo {
namespace {

constexpr std::string_view kDigits = "0123456789";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const auto first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Names are ASCII; the C library's tolower would follow the locale.
std::string lowerCase(std::string_view name) {
  std::string lower(name);
  std::ranges::transform(lower, lower.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

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
    headers_.emplace_back(lowerCase(trimmed(line.substr(0, colon))), trimmed(line.substr(colon + 1)));
  }
  return true;
}

}  // namespace nimbo
