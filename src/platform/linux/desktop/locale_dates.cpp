// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/locale_dates.h"

#include <langinfo.h>
#include <time.h>
#include <wchar.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nimbo {
namespace {

constexpr const char* kPlain = "C";

locale_t makeLocale(const std::string& name) {
  // An empty name would make newlocale look into the environment.
  const char* const wanted = name.empty() ? kPlain : name.c_str();
  const locale_t locale = ::newlocale(LC_TIME_MASK | LC_CTYPE_MASK, wanted, nullptr);
  return locale != nullptr ? locale : ::newlocale(LC_ALL_MASK, kPlain, nullptr);
}

/// Whether the locale's own time of day counts to twelve. One that has no names for the halves of the
/// day would be ambiguous without the hours from 13 on.
bool hasTwelveHours(locale_t locale) {
  constexpr std::array<std::string_view, 3> kTwelveHours = {"%r", "%I", "%l"};
  const std::string_view format = ::nl_langinfo_l(T_FMT, locale);
  const std::string_view afternoon = ::nl_langinfo_l(PM_STR, locale);
  return !afternoon.empty() && std::any_of(kTwelveHours.begin(), kTwelveHours.end(), [&](std::string_view hours) {
    return format.find(hours) != std::string_view::npos;
  });
}

/// A date with its month's name, in the order of the locale's own date, which is all in figures.
const wchar_t* monthPattern(locale_t locale) {
  const std::string_view date = ::nl_langinfo_l(D_FMT, locale);
  if (date.starts_with("%m") || date.starts_with("%D")) return L"%b %-d, %Y";
  return date.starts_with("%Y") ? L"%Y %b %-d" : L"%-d %b %Y";
}

}  // namespace

// glibc's "-" leaves the leading zero out.
LocaleDates::LocaleDates(const std::string& locale)
    : locale_(makeLocale(locale)),
      timePattern_(hasTwelveHours(locale_.get()) ? L"%-I:%M %p" : L"%H:%M"),
      monthPattern_(monthPattern(locale_.get())) {}

std::string LocaleDates::format(std::chrono::system_clock::time_point time, const std::wstring& pattern) const {
  const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
  std::tm fields{};
  // localtime_r alone keeps the zone in which the program started.
  ::tzset();
  if (::localtime_r(&seconds, &fields) == nullptr) return {};
  // Wide characters are Unicode whatever the character set of the locale.
  std::array<wchar_t, 256> wide{};
  const std::size_t size = ::wcsftime_l(wide.data(), wide.size(), pattern.c_str(), &fields, locale_.get());
  // What the library makes UTF-8 of in every locale is a path.
  return std::filesystem::path(std::u32string(wide.data(), wide.data() + size)).string();
}

}  // namespace nimbo
