// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace nimbo {

/// What this system calls the things that the program's texts speak of. The texts are put together where they are
/// shown; here are the words, and the sentences that differ in more than a word. UTF-8; never changes while the program
/// runs.
struct Wording {
  std::string computer;
  std::string laptop;
  std::string bar;            ///< where the items are
  std::string system;         ///< at the beginning of a sentence
  std::string systemMonitor;  ///< the program that shows all processes, by its name
  std::string quitKeys;
  double quitKeysWidth = 0;   ///< points that they take in a text of 11 points
  std::string swapPlace;      ///< "memory stored …"
  std::string accessibility;  ///< what it takes to read what other programs show
  std::string loginSettings;  ///< where the user approves what starts at log-in

  /// Before the system's own words for why the start at log-in could not be changed; ends in a blank.
  std::string loginAdvice;
  std::string widgetsUnavailable;
  std::string signInReadStillWaiting;
  std::string signInReadTimedOut;
  std::string desktopFallbackHelp;  ///< two lines
  std::string desktopShowsNothing;  ///< of Claude Desktop, which runs
};

}  // namespace nimbo
