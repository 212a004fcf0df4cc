// SPDX-License-Identifier: MIT
#include "base/lifetime.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace nimbo {
namespace {

class LifetimeTest : public ::testing::Test {
 protected:
  std::optional<Lifetime> lifetime{std::in_place};
  int sum = 0;
  std::function<bool(int)> add = lifetime->guard([this](int value) { sum += value; });
};

TEST_F(LifetimeTest, GuardedCallIsMadeWhileTheOwnerLives) {
  EXPECT_TRUE(add(2));
  EXPECT_TRUE(add(3));
  EXPECT_EQ(sum, 5);
}

TEST_F(LifetimeTest, NothingIsCalledOnceTheOwnerIsGone) {
  const auto copy = add;
  lifetime.reset();
  EXPECT_FALSE(add(2));
  EXPECT_FALSE(copy(2));
  EXPECT_EQ(sum, 0);
}

TEST_F(LifetimeTest, CallMayEndTheOwner) {
  const auto end = lifetime->guard([this] { lifetime.reset(); });
  EXPECT_TRUE(end());
  EXPECT_FALSE(end());
}

}  // namespace
}  // namespace nimbo
