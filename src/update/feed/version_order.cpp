// SPDX-License-Identifier: MIT
#include "update/feed/version_order.h"

#include <algorithm>
#include <cstddef>

namespace nimbo {
namespace {

/// Takes the first number off `version`, without its leading zeros: "" is 0.
std::string_view takeNumber(std::string_view& version) {
  const auto dot = version.find('.');
  std::string_view number = version.substr(0, dot);
  version = dot == std::string_view::npos ? std::string_view() : version.substr(dot + 1);
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

}  // namespace

bool isVersion(std::string_view text) {
  return !text.empty() && text.front() != '.' && text.back() != '.' && text.find("..") == std::string_view::npos &&
         text.find_first_not_of(".0123456789") == std::string_view::npos;
}

bool isNewerVersion(std::string_view candidate, std::string_view than) {
  if (!isVersion(candidate) || !isVersion(than)) return false;
  while (!candidate.empty() || !than.empty()) {
    // As text, so that no number is too large.
    const auto left = takeNumber(candidate);
    const auto right = takeNumber(than);
    if (left.size() != right.size()) return left.size() > right.size();
    if (left != right) return left > right;
  }
  return false;
}

}  // namespace nimbo
