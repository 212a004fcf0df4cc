// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>

namespace nimbo {

/// Keeps something registered (a timer, a watch, an observer) for as long as it lives.
/// Destroying it unregisters; no callback arrives afterwards. Main thread only.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      reset();
      cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
  }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription() { reset(); }

  [[nodiscard]] explicit operator bool() const { return static_cast<bool>(cancel_); }

  void reset() {
    if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
  }

 private:
  std::function<void()> cancel_;
};

}  // namespace nimbo
