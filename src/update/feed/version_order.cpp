// SPDX-License-Identifier: MIT
#include "update/feed/version_order.h"

#include <algorithm>
#include <cassert>
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

// As text, so that no number is too large.
std::strong_ordering compareNumbers(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return left.size() <=> right.size();
  return left <=> right;
}

}  // namespace

bool isVersion(std::string_view text) {
  return !text.empty() && text.front() != '.' && text.back() != '.' && text.find("..") == std::string_view::npos &&
         text.find_first_not_of(".0123456789") == std::string_view::npos;
}

std::strong_ordering compareVersions(std::string_view left, std::string_view right) {
  assert(isVersion(left) && isVersion(right));
  while (!left.empty() || !right.empty()) {
    const auto order = compareNumbers(takeNumber(left), takeNumber(right));
    if (order != std::strong_ordering::equal) return order;
  }
  return std::strong_ordering::equal;
}

bool isNewerVersion(std::string_view candidate, std::string_view than) {
  return isVersion(candidate) && isVersion(than) && compareVersions(candidate, than) == std::strong_ordering::greater;
}

}  // namespace nimbo
