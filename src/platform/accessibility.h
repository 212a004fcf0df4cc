// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace nimbo {

/// One element of another application's interface. What cannot be told, in time or at all, is absent.
class AccessibleElement {
 public:
  virtual ~AccessibleElement() = default;

  [[nodiscard]] virtual std::optional<std::string> title() = 0;
  [[nodiscard]] virtual std::optional<std::string> description() = 0;
  [[nodiscard]] virtual std::optional<std::string> value() = 0;
  /// In order, at most `limit`.
  [[nodiscard]] virtual std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) = 0;
};

class AccessibleApplication {
 public:
  virtual ~AccessibleApplication() = default;

  /// No later call waits longer than that for the application.
  virtual void setMessagingTimeout(std::chrono::milliseconds limit) = 0;
  /// Makes an application that is built on a web engine expose its content. Ends soon after a stop is asked for.
  virtual void exposeContent(const std::stop_token& stop) = 0;
  /// The first ones, at most `limit`.
  [[nodiscard]] virtual std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) = 0;
};

/// What other applications show, by the system's interface for assistive technology. One thread at a
/// time, any one but the main thread; objects it gives out belong to the same thread and it outlives
/// them.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  /// Whether the user and the system let this program look.
  [[nodiscard]] virtual bool isTrusted() = 0;
  /// Asks for it, where the system has somebody to ask, and makes applications that start from now on
  /// expose what they show. Also while another thread uses the rest.
  virtual void requestTrust() = 0;
  /// A running application by its bundle identifier; null when it does not run.
  [[nodiscard]] virtual std::unique_ptr<AccessibleApplication> application(const std::string& bundleIdentifier) = 0;
};

}  // namespace nimbo
