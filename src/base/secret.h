// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace nimbo {

/// A text, such as a token, of which nothing stays behind: it cannot be copied by mistake, and memory
/// that it no longer needs is overwritten. Empty once it is moved away.
class Secret {
 public:
  Secret() = default;
  /// So many zeros, to be written over.
  explicit Secret(std::size_t size) : bytes_(new char[size + 1]{}, {size}) {}
  explicit Secret(std::string_view text) : Secret(text.size()) { text.copy(data(), text.size()); }

  [[nodiscard]] std::size_t size() const { return bytes_ ? bytes_.get_deleter().size : 0; }
  [[nodiscard]] std::string_view view() const { return {bytes_.get(), size()}; }
  /// Ends with a zero behind the text.
  [[nodiscard]] const char* c_str() const { return bytes_ ? bytes_.get() : ""; }
  /// `size` bytes and a zero; null when there was never a text or it is moved away.
  [[nodiscard]] char* data() { return bytes_.get(); }

  /// Keeps what fits and adds zeros for the rest.
  void resize(std::size_t size) {
    Secret resized(size);
    view().copy(resized.data(), size);
    *this = std::move(resized);
  }

 private:
  struct WipingDelete {
    std::size_t size;
    void operator()(char* bytes) const {
      // Volatile, because a compiler may drop writes to memory that nobody reads again.
      std::fill_n(static_cast<volatile char*>(bytes), size, '\0');
      delete[] bytes;
    }
  };

  std::unique_ptr<char[], WipingDelete> bytes_;
};

}  // namespace nimbo
