// SPDX-License-Identifier: MIT
// What every power-management service promises (platform/assertion_client.h).
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/assertion_client.h"

namespace nimbo {

/// A client of a service that grants what is asked for until told otherwise.
struct AssertionClientHost {
  using Assertions = std::vector<std::pair<std::string, std::string>>;  ///< type and reason

  virtual ~AssertionClientHost() = default;
  [[nodiscard]] virtual AssertionClient& client() = 0;
  /// What the service holds, in the order of its making, once that is as much as expected or has had time to be.
  [[nodiscard]] virtual Assertions held(std::size_t expected) = 0;
  virtual void setRefuses(bool refuses) = 0;
};

using AssertionClientHostMaker = std::unique_ptr<AssertionClientHost> (*)();

template <class Host>
std::unique_ptr<AssertionClientHost> makeAssertionClientHost() {
  return std::make_unique<Host>();
}

class AssertionClientContract : public testing::TestWithParam<AssertionClientHostMaker> {
 protected:
  using Assertions = AssertionClientHost::Assertions;

  const std::unique_ptr<AssertionClientHost> host = GetParam()();
  AssertionClient& client = host->client();
  const std::pair<std::string, std::string> forSystem{kPreventSystemSleep, "work — goes on"};
  const std::pair<std::string, std::string> forDisplay{kPreventDisplaySleep, "somebody looks"};
};

TEST_P(AssertionClientContract, AssertionIsHeldWithItsTypeAndReasonUntilItIsReleased) {
  const auto id = client.create(forSystem.first, forSystem.second);
  ASSERT_TRUE(id);
  EXPECT_EQ(host->held(1), Assertions{forSystem});
  client.release(*id);
  EXPECT_EQ(host->held(0), Assertions{});
}

TEST_P(AssertionClientContract, EitherAssertionIsReleasedWithoutTouchingTheOther) {
  const auto system = client.create(forSystem.first, forSystem.second);
  const auto display = client.create(forDisplay.first, forDisplay.second);
  ASSERT_TRUE(system && display);
  EXPECT_NE(*system, *display);
  client.release(*system);
  EXPECT_EQ(host->held(1), Assertions{forDisplay});
  ASSERT_TRUE(client.create(forSystem.first, forSystem.second));
  client.release(*display);
  EXPECT_EQ(host->held(1), Assertions{forSystem});
}

TEST_P(AssertionClientContract, EqualAssertionsAreHeldEachForItself) {
  const auto first = client.create(forSystem.first, forSystem.second);
  const auto second = client.create(forSystem.first, forSystem.second);
  ASSERT_TRUE(first && second);
  EXPECT_NE(*first, *second);
  client.release(*first);
  EXPECT_EQ(host->held(1), Assertions{forSystem});
}

TEST_P(AssertionClientContract, ReleasingTwiceOrSomethingUnknownTouchesNothing) {
  const auto system = client.create(forSystem.first, forSystem.second);
  ASSERT_TRUE(system && client.create(forDisplay.first, forDisplay.second));
  client.release(*system);
  client.release(*system);
  client.release(12345);
  EXPECT_EQ(host->held(1), Assertions{forDisplay});
}

TEST_P(AssertionClientContract, RefusalIsAnErrorWithACodeAndConcernsNothingElse) {
  ASSERT_TRUE(client.create(forSystem.first, forSystem.second));
  host->setRefuses(true);
  const auto refused = client.create(forDisplay.first, forDisplay.second);
  ASSERT_FALSE(refused);
  EXPECT_NE(refused.error().code, 0);
  EXPECT_EQ(host->held(1), Assertions{forSystem});
  host->setRefuses(false);
  EXPECT_TRUE(client.create(forDisplay.first, forDisplay.second));
  EXPECT_EQ(host->held(2), (Assertions{forSystem, forDisplay}));
}

}  // namespace nimbo
