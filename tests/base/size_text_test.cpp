// SPDX-License-Identifier: MIT
#include "base/size_text.h"

#include <gtest/gtest.h>

#include <clocale>

namespace nimbo {
namespace {

TEST(SizeText, GigabytesHaveOneDecimal) {
  EXPECT_EQ(gigabytesText(0), "0.0 GB");
  EXPECT_EQ(gigabytesText(17179869184), "16.0 GB");
  EXPECT_EQ(gigabytesText(12025908429), "11.2 GB");
}

TEST(SizeText, ExactlyOneGigabyteIsShownInGigabytes) { EXPECT_EQ(footprintText(1073741824), "1.0 GB"); }

TEST(SizeText, OneByteLessRoundsUpTo1024Megabytes) { EXPECT_EQ(footprintText(1073741823), "1024 MB"); }

TEST(SizeText, SmallFootprintsRoundToWholeMegabytes) {
  EXPECT_EQ(footprintText(1), "0 MB");
  EXPECT_EQ(footprintText(600'000), "1 MB");
}

TEST(SizeText, DecimalPointDoesNotFollowTheLocale) {
  const char* const set = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_EQ(gigabytesText(1610612736), "1.5 GB") << "locale available: " << (set != nullptr);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace nimbo
