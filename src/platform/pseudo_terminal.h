// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/result.h"

namespace nimbo {

struct TerminalSize {
  unsigned short columns = 80;
  unsigned short rows = 24;
};

struct ChildProgram {
  std::string executable;
  std::vector<std::string> arguments;    ///< without the program itself
  std::vector<std::string> environment;  ///< "NAME=value", all there is
  std::string folder;                    ///< it starts in
};

/// A program that runs on a pseudo-terminal of its own, as its session's leader. Destroying it stops
/// the program and whatever else still belongs to its session or holds the terminal, reaps it and
/// closes the terminal. Used by one thread at a time, any one.
class TerminalProgram {
 public:
  virtual ~TerminalProgram() = default;

  enum class Input {
    nothing,  ///< none came in time
    some,     ///< bytes were appended
    ended,    ///< nothing will ever come: the terminal is closed on the other side
  };

  /// Appends up to 8192 bytes of what the program wrote, waiting for them at most `patience`.
  [[nodiscard]] virtual Input read(std::string& bytes, std::chrono::milliseconds patience) = 0;
  /// What the user would type; false when it cannot be taken.
  [[nodiscard]] virtual bool write(std::string_view bytes) = 0;
  /// Whether the program itself still runs.
  [[nodiscard]] virtual bool running() = 0;
  /// Asks it to end, and after `patience` forces it; returns when it is gone.
  virtual void stop(std::chrono::milliseconds patience) = 0;
};

/// A pseudo-terminal on which nothing runs yet. Destroying it closes it.
class PseudoTerminal {
 public:
  virtual ~PseudoTerminal() = default;

  /// Starts the program and gives it the terminal; at most once.
  [[nodiscard]] virtual Result<std::unique_ptr<TerminalProgram>, std::error_code> start(
      const ChildProgram& program) = 0;
};

/// Opens pseudo-terminals. Any thread.
class PseudoTerminals {
 public:
  virtual ~PseudoTerminals() = default;

  [[nodiscard]] virtual Result<std::unique_ptr<PseudoTerminal>, std::error_code> open(TerminalSize size) = 0;
};

}  // namespace nimbo
