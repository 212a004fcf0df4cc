// SPDX-License-Identifier: MIT
#pragma once

#include <locale.h>

#include <filesystem>
#include <optional>
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

/// The user's time zone as a name that a database of zones understands: an identifier such as
/// "Europe/Berlin" or the absolute path of a zone file. `tz` is the TZ variable, which counts when it is
/// set; otherwise the link `localtime` (/etc/localtime) does, as it stands at that moment. A TZ that
/// spells out its own rules ("CET-1CEST") is returned as it is and is in no database.
[[nodiscard]] std::string localTimeZoneName(const std::optional<std::string>& tz,
                                            const std::filesystem::path& localtime);

}  // namespace nimbo
