// SPDX-License-Identifier: MIT
#include "awake/power_assertions.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/mac_wording.h"
#include "support/fake_assertion_client.h"

namespace nimbo {
namespace {

using Calls = std::vector<std::string>;
using Held = std::vector<FakeAssertionClient::Assertion>;

const FakeAssertionClient::Assertion kSystem{"PreventUserIdleSystemSleep",
                                             "Nimbo — keep Mac awake while work continues"};
const FakeAssertionClient::Assertion kDisplay{"PreventUserIdleDisplaySleep", "Nimbo — keep display on"};

class PowerAssertionsTest : public testing::Test {
 protected:
  [[nodiscard]] std::optional<std::int32_t> failureOf(bool keepDisplayOn) {
    const auto held = assertions.activate(keepDisplayOn);
    return held ? std::nullopt : std::optional(held.error().code);
  }

  FakeAssertionClient client;
  PowerAssertions assertions{client, macWording()};
};

TEST_F(PowerAssertionsTest, NothingIsHeldAtFirst) {
  EXPECT_FALSE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.calls, Calls{});
}

TEST_F(PowerAssertionsTest, SystemAloneTakesOneAssertionWithItsReason) {
  EXPECT_EQ(failureOf(false), std::nullopt);
  EXPECT_TRUE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.held(), Held{kSystem});
}

TEST_F(PowerAssertionsTest, DisplayTakesBothSystemFirst) {
  EXPECT_EQ(failureOf(true), std::nullopt);
  EXPECT_TRUE(assertions.isActive());
  EXPECT_TRUE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.held(), (Held{kSystem, kDisplay}));
}

TEST_F(PowerAssertionsTest, SecondActivationTakesNothingTwice) {
  EXPECT_EQ(failureOf(true), std::nullopt);
  EXPECT_EQ(failureOf(true), std::nullopt);
  EXPECT_EQ(client.calls, (Calls{"create PreventUserIdleSystemSleep", "create PreventUserIdleDisplaySleep"}));
}

TEST_F(PowerAssertionsTest, SecondActivationWithoutDisplayTakesNothingTwice) {
  EXPECT_EQ(failureOf(false), std::nullopt);
  EXPECT_EQ(failureOf(false), std::nullopt);
  EXPECT_EQ(client.calls, Calls{"create PreventUserIdleSystemSleep"});
}

TEST_F(PowerAssertionsTest, DisplayIsAddedToARunningOne) {
  EXPECT_EQ(failureOf(false), std::nullopt);
  EXPECT_EQ(failureOf(true), std::nullopt);
  EXPECT_EQ(client.held(), (Held{kSystem, kDisplay}));
}

TEST_F(PowerAssertionsTest, ActivationWithoutDisplayReleasesOnlyTheDisplay) {
  EXPECT_EQ(failureOf(true), std::nullopt);
  client.calls.clear();
  EXPECT_EQ(failureOf(false), std::nullopt);
  EXPECT_EQ(client.calls, Calls{"release PreventUserIdleDisplaySleep"});
  EXPECT_EQ(client.held(), Held{kSystem});
  EXPECT_TRUE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
}

TEST_F(PowerAssertionsTest, RefusedSystemLeavesNothingAndAsksForNoDisplay) {
  client.refuse(kPreventSystemSleep, -536870206);
  EXPECT_EQ(failureOf(true), -536870206);
  EXPECT_FALSE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.calls, Calls{"create PreventUserIdleSystemSleep"});
}

TEST_F(PowerAssertionsTest, RefusedDisplayRollsAFreshSystemAssertionBack) {
  client.refuse(kPreventDisplaySleep, 7);
  EXPECT_EQ(failureOf(true), 7);
  EXPECT_FALSE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.held(), Held{});
  EXPECT_EQ(client.calls, (Calls{"create PreventUserIdleSystemSleep", "create PreventUserIdleDisplaySleep",
                                 "release PreventUserIdleSystemSleep"}));
}

TEST_F(PowerAssertionsTest, RefusedDisplayKeepsASystemAssertionThatWasHeldBefore) {
  EXPECT_EQ(failureOf(false), std::nullopt);
  client.refuse(kPreventDisplaySleep, 7);
  EXPECT_EQ(failureOf(true), 7);
  EXPECT_TRUE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
  EXPECT_EQ(client.held(), Held{kSystem});
}

TEST_F(PowerAssertionsTest, ActivationSucceedsOnceTheSystemGrantsAgain) {
  client.refuse(kPreventDisplaySleep, 7);
  EXPECT_EQ(failureOf(true), 7);
  client.grant(kPreventDisplaySleep);
  EXPECT_EQ(failureOf(true), std::nullopt);
  EXPECT_EQ(client.held(), (Held{kSystem, kDisplay}));
}

TEST_F(PowerAssertionsTest, DeactivationReleasesDisplayFirst) {
  EXPECT_EQ(failureOf(true), std::nullopt);
  client.calls.clear();
  assertions.deactivate();
  EXPECT_EQ(client.calls, (Calls{"release PreventUserIdleDisplaySleep", "release PreventUserIdleSystemSleep"}));
  EXPECT_FALSE(assertions.isActive());
  EXPECT_FALSE(assertions.keepsDisplayOn());
}

TEST_F(PowerAssertionsTest, DeactivationWithNothingHeldMakesNoCall) {
  assertions.deactivate();
  EXPECT_EQ(failureOf(false), std::nullopt);
  assertions.deactivate();
  client.calls.clear();
  assertions.deactivate();
  EXPECT_EQ(client.calls, Calls{});
}

TEST_F(PowerAssertionsTest, DestroyingItReleasesWhatIsHeld) {
  {
    PowerAssertions brief(client, macWording());
    ASSERT_TRUE(brief.activate(true));
  }
  EXPECT_EQ(client.held(), Held{});
  EXPECT_EQ(client.calls.back(), "release PreventUserIdleSystemSleep");
}

TEST(PowerError, DescriptionNamesTheCode) {
  EXPECT_EQ(PowerError{17}.description(macWording()),
            "macOS couldn’t keep your Mac awake (error 17). Please try again.");
}

TEST(PowerError, NegativeCodeHasItsMinusSign) {
  EXPECT_EQ(PowerError{-536870206}.description(macWording()),
            "macOS couldn’t keep your Mac awake (error -536870206). Please try again.");
  EXPECT_EQ(PowerError{std::numeric_limits<std::int32_t>::min()}.description(macWording()),
            "macOS couldn’t keep your Mac awake (error -2147483648). Please try again.");
}

}  // namespace
}  // namespace nimbo
