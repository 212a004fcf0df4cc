// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace nimbo {

/// A question in a window of its own.
struct AlertContent {
  std::string title;  ///< the question in bold
  std::string text;
  std::vector<std::string> buttons;  ///< the first is the default one, pressed by Return
  std::size_t cancel = 0;            ///< the one pressed by Escape and closing
  bool operator==(const AlertContent&) const = default;
};

/// An alert on the screen; destroying it takes it away unanswered. Main thread only.
class Alert {
 public:
  virtual ~Alert() = default;

  /// Brings it to the front once more.
  virtual void present() = 0;
};

}  // namespace nimbo
