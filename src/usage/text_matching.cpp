// SPDX-License-Identifier: MIT
#include "usage/text_matching.h"

#include <algorithm>

#include "base/white_space.h"

namespace nimbo {
namespace {

bool sameIgnoringCase(char character, char lowerCase) { return lowerCased(character) == lowerCase; }

}  // namespace

char lowerCased(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
  return text.size() == lowerCase.size() && startsWithIgnoringCase(text, lowerCase);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerCase) {
  return text.size() >= lowerCase.size() && std::equal(lowerCase.begin(), lowerCase.end(), text.begin(),
                                                       [](char lower, char any) { return lowerCased(any) == lower; });
}

std::string removedIgnoringCase(std::string_view text, std::string_view lowerCase) {
  std::string rest;
  for (;;) {
    const auto* const found =
        std::search(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), sameIgnoringCase);
    rest.append(text.begin(), found);
    if (found == text.end()) return rest;
    text.remove_prefix(static_cast<std::size_t>(found - text.begin()) + lowerCase.size());
  }
}

std::string plainLowerCased(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  while (!text.empty()) {
    const std::size_t blank = leadingWhiteSpace(text);
    plain += blank > 0 ? ' ' : lowerCased(text.front());
    text.remove_prefix(std::max(blank, std::size_t{1}));
  }
  return plain;
}

}  // namespace nimbo
