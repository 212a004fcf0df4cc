// SPDX-License-Identifier: MIT
#include "base/uuid.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace nimbo {
namespace {

TEST(Uuid, HasTheFormOfVersionFour) {
  const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(std::regex_match(makeUuid(), form));
}

TEST(Uuid, IsAnotherEachTime) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) seen.insert(makeUuid());
  EXPECT_EQ(seen.size(), 1000U);
}

}  // namespace
}  // namespace nimbo
