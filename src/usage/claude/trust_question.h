// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "usage/claude/terminal_text.h"

namespace nimbo {

/// Recognizes the tool's question whether its folder may be trusted, in whatever pieces it arrives. Each
/// byte is looked at once.
class TrustQuestion {
 public:
  /// `folderNames` are those by which the tool may call the folder.
  explicit TrustQuestion(const std::vector<std::string>& folderNames);

  void append(std::string_view bytes);

  /// Whether the whole question is on the screen, for this folder and no other.
  [[nodiscard]] bool isAsked() const { return missing_.empty(); }

 private:
  TerminalText text_;
  std::vector<std::vector<std::string>> missing_;  // parts not seen yet, each in any of its forms
};

}  // namespace nimbo
