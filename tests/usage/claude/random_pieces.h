// SPDX-License-Identifier: MIT
#pragma once

#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// A text of `count` of these pieces in random order. The same seed gives the same text everywhere.
inline std::string randomText(std::minstd_rand& random, std::span<const std::string_view> pieces, std::size_t count) {
  std::string text;
  for (std::size_t index = 0; index < count; ++index) text += pieces[random() % pieces.size()];
  return text;
}

/// `text` cut at random places into pieces of one to `longest` bytes.
inline std::vector<std::string_view> randomCuts(std::minstd_rand& random, std::string_view text, std::size_t longest) {
  std::vector<std::string_view> cuts;
  while (!text.empty()) {
    cuts.push_back(text.substr(0, 1 + random() % longest));
    text.remove_prefix(cuts.back().size());
  }
  return cuts;
}

}  // namespace nimbo
