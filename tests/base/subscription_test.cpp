// SPDX-License-Identifier: MIT
#include "base/subscription.h"

#include <gtest/gtest.h>

#include <utility>

namespace nimbo {
namespace {

TEST(Subscription, DestructionCancelsOnce) {
  int cancelled = 0;
  {
    const Subscription subscription([&] { ++cancelled; });
  }
  EXPECT_EQ(cancelled, 1);
}

TEST(Subscription, MovedFromNoLongerCancels) {
  int cancelled = 0;
  Subscription first([&] { ++cancelled; });
  Subscription second(std::move(first));
  EXPECT_TRUE(second);
  second.reset();
  EXPECT_EQ(cancelled, 1);
}

TEST(Subscription, AssignmentCancelsTheOldOne) {
  int oldCancelled = 0;
  int newCancelled = 0;
  Subscription subscription([&] { ++oldCancelled; });
  subscription = Subscription([&] { ++newCancelled; });
  EXPECT_EQ(oldCancelled, 1);
  EXPECT_EQ(newCancelled, 0);
}

TEST(Subscription, CancellingMayResetTheSameSubscription) {
  int cancelled = 0;
  Subscription subscription;
  subscription = Subscription([&] {
    ++cancelled;
    subscription.reset();
  });
  subscription.reset();
  EXPECT_EQ(cancelled, 1);
}

TEST(Subscription, EmptyOneIsFalseAndHarmless) {
  Subscription subscription;
  EXPECT_FALSE(subscription);
  subscription.reset();
}

}  // namespace
}  // namespace nimbo
