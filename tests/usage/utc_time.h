// SPDX-License-Identifier: MIT
#pragma once

#include "usage/usage_model.h"

namespace nimbo {

inline UsageTime utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
  const auto date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
  return std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second);
}

}  // namespace nimbo
