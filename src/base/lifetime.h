// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace nimbo {

/// A member of an object that callbacks may come back to when it is already gone: those that it guards
/// then do nothing. They are called on the thread that destroys the object, and may be kept on any.
class Lifetime {
 public:
  Lifetime() = default;
  Lifetime(const Lifetime&) = delete;
  Lifetime& operator=(const Lifetime&) = delete;

  /// `call`, for as long as this lives. What it becomes says whether it was called.
  template <class Call>
  [[nodiscard]] auto guard(Call call) const {
    return [alive = std::weak_ptr(alive_), call = std::move(call)](auto&&... values) {
      if (alive.expired()) return false;
      call(std::forward<decltype(values)>(values)...);
      return true;
    };
  }

 private:
  std::shared_ptr<bool> alive_ = std::make_shared<bool>();
};

}  // namespace nimbo
