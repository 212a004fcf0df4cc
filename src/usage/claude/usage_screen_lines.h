// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// Understands a usage screen line by line: a title, then its figure and its reset, in any order and
/// with anything in between.
class UsageScreenLines {
 public:
  struct Window {
    std::string title{};
    double usedPercent = 0;
    std::string resetLine{};  ///< empty for none
  };

  void take(std::string_view line);
  /// All lines of `text`, the last of which need not end.
  void takeAll(std::string_view text);
  /// Nothing more belongs to the window that was begun.
  void commit();

  /// One per title, in the order of their first appearance.
  [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }

 private:
  void begin(std::string title);
  void takeDetail(std::string_view line);

  std::vector<Window> windows_;
  std::optional<std::string> title_;
  std::optional<double> percent_;
  std::string resetLine_;
};

}  // namespace nimbo
