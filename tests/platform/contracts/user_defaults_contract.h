// SPDX-License-Identifier: MIT
// What every store of preferences promises (platform/user_defaults.h).
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/user_defaults.h"

namespace nimbo {

/// An empty store and three views of two of its domains.
struct UserDefaultsHost {
  virtual ~UserDefaultsHost() = default;
  [[nodiscard]] virtual UserDefaultsDomains& domains() = 0;
  [[nodiscard]] virtual std::unique_ptr<UserDefaults> open(const std::string& domain) = 0;
};

using UserDefaultsHostMaker = std::unique_ptr<UserDefaultsHost> (*)();

template <class Host>
std::unique_ptr<UserDefaultsHost> makeUserDefaultsHost() {
  return std::make_unique<Host>();
}

class UserDefaultsContract : public testing::TestWithParam<UserDefaultsHostMaker> {
 protected:
  using json = nlohmann::json;

  void store(const char* key, const json& value) const {
    ASSERT_TRUE(stores.setPersistentDomain("test.domain", {{key, value}}));
  }

  const std::unique_ptr<UserDefaultsHost> host = GetParam()();
  UserDefaultsDomains& stores = host->domains();
  const std::unique_ptr<UserDefaults> first = host->open("test.domain");
  const std::unique_ptr<UserDefaults> second = host->open("test.domain");
  const std::unique_ptr<UserDefaults> other = host->open("test.other");
  UserDefaults& prefs = *first;
  UserDefaults& sameDomain = *second;
  UserDefaults& otherDomain = *other;
};

TEST_P(UserDefaultsContract, MissingKeyIsAbsentInEveryType) {
  EXPECT_EQ(prefs.boolean("key"), std::nullopt);
  EXPECT_EQ(prefs.integer("key"), std::nullopt);
  EXPECT_EQ(prefs.string("key"), std::nullopt);
  EXPECT_EQ(prefs.stringArray("key"), std::nullopt);
}

TEST_P(UserDefaultsContract, EveryTypeReadsBackAsSet) {
  prefs.set("on", true);
  prefs.set("count", -2);
  prefs.set("name", "Ω “quoted” \\ \n");
  prefs.set("list", {"b", "a", "b"});
  EXPECT_EQ(prefs.boolean("on"), true);
  EXPECT_EQ(prefs.integer("count"), -2);
  EXPECT_EQ(prefs.string("name"), "Ω “quoted” \\ \n");
  EXPECT_EQ(prefs.stringArray("list"), (std::vector<std::string>{"b", "a", "b"}));
}

TEST_P(UserDefaultsContract, WholeRangeOfIntegersReadsBack) {
  for (const auto value : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    prefs.set("count", value);
    EXPECT_EQ(sameDomain.integer("count"), value);
  }
}

TEST_P(UserDefaultsContract, RegisteredDefaultShowsUntilTheKeyIsSet) {
  prefs.registerDefault("count", 5);
  EXPECT_EQ(prefs.integer("count"), 5);
  prefs.set("count", 6);
  EXPECT_EQ(prefs.integer("count"), 6);
}

TEST_P(UserDefaultsContract, RegisteredDefaultIsNeverStored) {
  prefs.registerDefault("count", 5);
  prefs.set("other", true);
  EXPECT_EQ(stores.persistentDomain("test.domain"), json({{"other", true}}));
  EXPECT_EQ(sameDomain.integer("count"), std::nullopt);
}

TEST_P(UserDefaultsContract, SettingTheRegisteredValueStoresIt) {
  prefs.registerDefault("count", 5);
  prefs.set("count", 5);
  EXPECT_EQ(sameDomain.integer("count"), 5);
}

TEST_P(UserDefaultsContract, ValueOfAnotherTypeReadsAsTheRegisteredOne) {
  prefs.registerDefault("on", true);
  prefs.registerDefault("count", 5);
  prefs.registerDefault("name", "default");
  for (const json& wrong : {json("text"), json(5.5), json(nullptr), json::object(), json(2.5e300)}) {
    prefs.set("on", wrong);
    prefs.set("count", wrong);
    EXPECT_EQ(prefs.boolean("on"), true) << wrong;
    EXPECT_EQ(prefs.integer("count"), 5) << wrong;
  }
  prefs.set("name", 3);
  EXPECT_EQ(prefs.string("name"), "default");
}

TEST_P(UserDefaultsContract, WholeFloatIsAnInteger) {
  store("count", 5.0);
  EXPECT_EQ(prefs.integer("count"), 5);
  store("count", -0.0);
  EXPECT_EQ(prefs.integer("count"), 0);
}

TEST_P(UserDefaultsContract, NumberBeyondSixtyFourBitsIsNoInteger) {
  for (const json& huge : {json(std::numeric_limits<std::uint64_t>::max()), json(9223372036854775808.0), json(-1e19)}) {
    store("count", huge);
    EXPECT_EQ(prefs.integer("count"), std::nullopt) << huge;
  }
  store("count", -9223372036854775808.0);
  EXPECT_EQ(prefs.integer("count"), std::numeric_limits<std::int64_t>::min());
}

TEST_P(UserDefaultsContract, ZeroAndOneReadAsBooleansAndOtherNumbersDoNot) {
  store("on", 1);
  EXPECT_EQ(prefs.boolean("on"), true);
  store("on", 0);
  EXPECT_EQ(prefs.boolean("on"), false);
  store("on", 2);
  EXPECT_EQ(prefs.boolean("on"), std::nullopt);
  store("on", -1);
  EXPECT_EQ(prefs.boolean("on"), std::nullopt);
}

TEST_P(UserDefaultsContract, BooleansAndTextsReadAsNothingElse) {
  store("value", true);
  EXPECT_EQ(prefs.integer("value"), std::nullopt);
  EXPECT_EQ(prefs.string("value"), std::nullopt);
  store("value", "true");
  EXPECT_EQ(prefs.boolean("value"), std::nullopt);
  store("value", "5");
  EXPECT_EQ(prefs.integer("value"), std::nullopt);
  store("value", "a");
  EXPECT_EQ(prefs.stringArray("value"), std::nullopt);
}

TEST_P(UserDefaultsContract, ArrayWithAnythingButStringsIsNoStringArray) {
  store("list", {"a", 1});
  EXPECT_EQ(prefs.stringArray("list"), std::nullopt);
  store("list", json::array());
  EXPECT_EQ(prefs.stringArray("list"), std::vector<std::string>());
}

TEST_P(UserDefaultsContract, TwoInstancesOverOneDomainAgree) {
  prefs.set("count", 1);
  EXPECT_EQ(sameDomain.integer("count"), 1);
  sameDomain.set("count", 2);
  EXPECT_EQ(prefs.integer("count"), 2);
  sameDomain.set("on", true);
  prefs.set("count", 3);
  EXPECT_EQ(stores.persistentDomain("test.domain"), json({{"count", 3}, {"on", true}}));
}

TEST_P(UserDefaultsContract, DomainsDoNotMix) {
  prefs.set("count", 1);
  EXPECT_EQ(otherDomain.integer("count"), std::nullopt);
  EXPECT_EQ(stores.persistentDomain("test.other"), std::nullopt);
}

TEST_P(UserDefaultsContract, MissingDomainIsAbsent) { EXPECT_EQ(stores.persistentDomain("test.domain"), std::nullopt); }

TEST_P(UserDefaultsContract, ReplacedDomainIsSeenAtTheNextRead) {
  prefs.set("count", 1);
  prefs.set("old", true);
  EXPECT_TRUE(stores.setPersistentDomain("test.domain", {{"count", 2}}));
  EXPECT_EQ(prefs.integer("count"), 2);
  EXPECT_EQ(prefs.boolean("old"), std::nullopt);
}

TEST_P(UserDefaultsContract, RemovedDomainIsForgotten) {
  prefs.registerDefault("count", 5);
  prefs.set("count", 1);
  stores.removePersistentDomain("test.domain");
  EXPECT_EQ(stores.persistentDomain("test.domain"), std::nullopt);
  EXPECT_EQ(prefs.integer("count"), 5);
}

TEST_P(UserDefaultsContract, RemovingAMissingDomainDoesNothing) {
  otherDomain.set("count", 1);
  stores.removePersistentDomain("test.domain");
  EXPECT_EQ(otherDomain.integer("count"), 1);
}

}  // namespace nimbo
