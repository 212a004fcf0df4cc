// SPDX-License-Identifier: MIT
#include "base/observer_list.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace nimbo {
namespace {

TEST(ObserverList, TellsEveryObserverInOrder) {
  ObserverList<int> list;
  std::vector<int> told;
  const auto first = list.add([&](int value) { told.push_back(value); });
  const auto second = list.add([&](int value) { told.push_back(value * 10); });
  list.notify(3);
  EXPECT_EQ(told, (std::vector{3, 30}));
}

TEST(ObserverList, EndedSubscriptionHearsNothing) {
  ObserverList<> list;
  int told = 0;
  auto subscription = list.add([&] { ++told; });
  subscription.reset();
  list.notify();
  EXPECT_EQ(told, 0);
}

TEST(ObserverList, ObserverMayEndItselfAndOthersWhileTold) {
  ObserverList<> list;
  int told = 0;
  Subscription first;
  Subscription second;
  first = list.add([&] {
    ++told;
    second.reset();
    first.reset();
  });
  second = list.add([&] { told += 100; });
  list.notify();
  list.notify();
  EXPECT_EQ(told, 1);
}

TEST(ObserverList, ObserverAddedWhileTellingHearsTheNextEvent) {
  ObserverList<> list;
  int told = 0;
  Subscription late;
  const auto first = list.add([&] {
    if (!late) late = list.add([&] { ++told; });
  });
  list.notify();
  EXPECT_EQ(told, 0);
  list.notify();
  EXPECT_EQ(told, 1);
}

TEST(ObserverList, SubscriptionMayOutliveTheList) {
  Subscription subscription;
  {
    ObserverList<> list;
    subscription = list.add([] {});
  }
  subscription.reset();
  EXPECT_FALSE(subscription);
}

}  // namespace
}  // namespace nimbo
