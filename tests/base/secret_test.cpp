// SPDX-License-Identifier: MIT
#include "base/secret.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace nimbo {
namespace {

static_assert(!std::is_copy_constructible_v<Secret> && !std::is_copy_assignable_v<Secret>);
static_assert(!std::is_convertible_v<const char*, Secret>);

TEST(Secret, HoldsItsTextAndAZeroBehindIt) {
  const Secret secret("text");
  EXPECT_EQ(secret.view(), "text");
  EXPECT_EQ(secret.size(), 4U);
  EXPECT_STREQ(secret.c_str(), "text");
}

TEST(Secret, MovingLeavesNothingBehindAndTheTextWhereItWas) {
  Secret first("short");
  const char* const text = first.c_str();
  Secret second(std::move(first));
  EXPECT_EQ(second.c_str(), text);
  EXPECT_EQ(first.view(), "");  // NOLINT(bugprone-use-after-move): it is empty then
  EXPECT_STREQ(first.c_str(), "");
  first = std::move(second);
  EXPECT_EQ(first.view(), "short");
  EXPECT_EQ(second.size(), 0U);  // NOLINT(bugprone-use-after-move)
}

TEST(Secret, EmptyOnesAreLikeAnyOther) {
  Secret secret;
  EXPECT_EQ(secret.view(), "");
  EXPECT_STREQ(secret.c_str(), "");
  secret.resize(2);
  EXPECT_EQ(secret.view(), std::string_view("\0\0", 2));
  EXPECT_STREQ(Secret("").c_str(), "");
}

TEST(Secret, ResizingKeepsWhatFitsAndAddsZeros) {
  Secret secret("text");
  secret.resize(2);
  EXPECT_EQ(secret.view(), "te");
  EXPECT_STREQ(secret.c_str(), "te");
  secret.resize(4);
  EXPECT_EQ(secret.view(), std::string_view("te\0\0", 4));
  secret.data()[2] = 's';
  secret.data()[3] = 't';
  EXPECT_EQ(secret.view(), "test");
}

}  // namespace
}  // namespace nimbo
