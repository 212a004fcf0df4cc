// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace nimbo {

/// Owns one operating-system handle. Traits give `Handle`, `invalid()` and `release(Handle)`.
template <class Traits>
class UniqueHandle {
 public:
  using Handle = typename Traits::Handle;

  UniqueHandle() = default;
  explicit UniqueHandle(Handle handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.detach()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) reset(other.detach());
    return *this;
  }
  UniqueHandle(const UniqueHandle&) = delete;
  UniqueHandle& operator=(const UniqueHandle&) = delete;
  ~UniqueHandle() { reset(); }

  [[nodiscard]] Handle get() const { return handle_; }
  [[nodiscard]] explicit operator bool() const { return handle_ != Traits::invalid(); }

  /// Gives the handle away; the caller now releases it.
  [[nodiscard]] Handle detach() { return std::exchange(handle_, Traits::invalid()); }

  /// Where a C function may put a new handle; lets go of the one there is.
  [[nodiscard]] Handle* out() {
    reset();
    return &handle_;
  }

  void reset(Handle handle = Traits::invalid()) {
    const Handle old = std::exchange(handle_, handle);
    if (old != Traits::invalid()) Traits::release(old);
  }

 private:
  Handle handle_ = Traits::invalid();
};

template <class Object, auto kRelease>
struct PointerTraits {
  using Handle = Object*;
  static Handle invalid() { return nullptr; }
  static void release(Handle object) { kRelease(object); }
};

/// Owns an object of a C library, which `kRelease` lets go.
template <class Object, auto kRelease>
using UniquePointer = UniqueHandle<PointerTraits<Object, kRelease>>;

}  // namespace nimbo
