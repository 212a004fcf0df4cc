// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace nimbo {

/// Finds one kind of escape sequence in a text that arrives in pieces.
class EscapeFilter {
 public:
  enum class Kind {
    operatingSystemCommand,  ///< ESC ] … ended by BEL or ESC \ ; anything but those two in between
    controlSequence,         ///< ESC [ parameters, intermediates and one final character
  };
  explicit EscapeFilter(Kind kind) : kind_(kind) {}

  /// Appends to `out` what is certain not to belong to a sequence.
  void feed(std::string_view text, std::string& out);

  /// The beginning of what may become a sequence; it is text when nothing follows.
  [[nodiscard]] const std::string& open() const { return open_; }

 private:
  void settle(std::string& out);

  Kind kind_;
  std::string open_;
};

/// What a program wrote to its terminal, as plain text: lossy UTF-8 without operating-system commands
/// and control sequences, each carriage return a line feed. However the bytes are cut into pieces, the
/// text is that of all of them at once.
class TerminalText {
 public:
  void append(std::string_view bytes);

  /// What no further byte can change.
  [[nodiscard]] const std::string& settled() const { return settled_; }

  /// What follows it if no byte follows.
  [[nodiscard]] std::string unsettled() const;

 private:
  std::string cut_;  // the beginning of a character
  EscapeFilter commands_{EscapeFilter::Kind::operatingSystemCommand};
  EscapeFilter controls_{EscapeFilter::Kind::controlSequence};
  std::string settled_;
};

}  // namespace nimbo
