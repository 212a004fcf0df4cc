// SPDX-License-Identifier: MIT
#pragma once

#include <locale.h>

#include <string>
#include <type_traits>

#include "base/unique_handle.h"
#include "platform/clock.h"

namespace nimbo {

/// Dates by the C library's locales, without touching the locale of the process.
class LocaleDates final : public Dates {
 public:
  /// `locale` is what the user's environment says: LC_ALL, else LC_TIME, else LANG. One that is not
  /// installed is the C locale.
  explicit LocaleDates(const std::string& locale);

  [[nodiscard]] std::string shortDateAndTime(std::chrono::system_clock::time_point time) const override {
    return format(time, L"%x, " + timePattern_);
  }
  [[nodiscard]] std::string shortTime(std::chrono::system_clock::time_point time) const override {
    return format(time, timePattern_);
  }
  [[nodiscard]] std::string abbreviatedDateAndShortTime(std::chrono::system_clock::time_point time) const override {
    return format(time, monthPattern_ + L", " + timePattern_);
  }

 private:
  [[nodiscard]] std::string format(std::chrono::system_clock::time_point time, const std::wstring& pattern) const;

  UniquePointer<std::remove_pointer_t<locale_t>, ::freelocale> locale_;
  std::wstring timePattern_;
  std::wstring monthPattern_;  ///< of a date with its month's abbreviated name
};

}  // namespace nimbo
