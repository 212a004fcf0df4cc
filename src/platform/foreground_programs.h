// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"

namespace nimbo {

/// Programs that the user sees run in a terminal. Any thread.
class ForegroundPrograms {
 public:
  virtual ~ForegroundPrograms() = default;

  /// Runs a program with its arguments, found as shells find it, without a shell: it has this process's terminal, input
  /// and output. Waits for its end; interrupts from the terminal are its own meanwhile, and a termination of this
  /// process is passed on to it. Its exit status, 128 and more after a signal; else one sentence about why it could not
  /// be started.
  [[nodiscard]] virtual Result<int, std::string> run(const std::vector<std::string>& command) = 0;

  /// Asks what runs to end, where this process hears of its own termination on its main loop.
  virtual void terminate() = 0;

  /// Waits until none of these processes is there any more; at once where one never was, with a sentence about it.
  [[nodiscard]] virtual Result<void, std::string> waitFor(const std::vector<std::int32_t>& processes) = 0;

  /// Waits that long; false as soon as nobody reads this process's standard output any more.
  [[nodiscard]] virtual bool isReadFor(std::chrono::seconds time) = 0;

  /// Whether standard output is a terminal whose user wants colours.
  [[nodiscard]] virtual bool showsColours() = 0;

  /// Of a process, as `ps` shows it; empty when there is none.
  [[nodiscard]] virtual std::string nameOf(std::int32_t process) = 0;
};

}  // namespace nimbo
