// SPDX-License-Identifier: MIT
#include "update/https_url.h"

#include <cstddef>

namespace nimbo {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";

// "unreserved", "gen-delims" and "sub-delims" of RFC 3986, sections 2.2 and 2.3, and the percent sign.
constexpr std::string_view kUrlCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=%";

bool isHexDigit(char c) { return kHexDigits.find(c) != std::string_view::npos; }

bool isPercentEncoded(std::string_view text) {
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1)) {
    if (text.size() - at < 3 || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) return false;
  }
  return true;
}

}  // namespace

bool isHttpsUrl(std::string_view text) {
  constexpr std::string_view kStart = "https://";
  if (!text.starts_with(kStart) || text.find_first_not_of(kUrlCharacters) != std::string_view::npos) return false;
  std::string_view host = text.substr(kStart.size());
  host = host.substr(0, host.find_first_of("/?#"));
  host.remove_prefix(host.rfind('@') + 1);
  return !host.empty() && host.front() != ':' && isPercentEncoded(text);
}

}  // namespace nimbo
