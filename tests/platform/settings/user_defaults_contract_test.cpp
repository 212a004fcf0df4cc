// SPDX-License-Identifier: MIT
// What every implementation of the preference interfaces promises, asked of the fake and of the files.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/user_defaults.h"
#include "support/fake_user_defaults.h"
#include "support/services/temporary_tree.h"
#include "support/turning_user_defaults.h"

namespace nimbo {
namespace {

using nlohmann::json;

struct InMemory {
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "test.domain"};
  FakeUserDefaults sameDomain{domains, "test.domain"};
  FakeUserDefaults otherDomain{domains, "test.other"};
};

struct InFiles {
  TemporaryTree tree;
  JsonUserDefaultsDomains domains{tree.path()};
  TurningUserDefaults defaults{tree.path(), "test.domain"};
  TurningUserDefaults sameDomain{tree.path(), "test.domain"};
  TurningUserDefaults otherDomain{tree.path(), "test.other"};
};

template <class Store>
class UserDefaultsContract : public ::testing::Test, public Store {
 protected:
  UserDefaults& prefs() { return this->defaults; }
  UserDefaultsDomains& stores() { return this->domains; }
  void store(const char* key, const json& value) {
    ASSERT_TRUE(stores().setPersistentDomain("test.domain", {{key, value}}));
  }
};

using Stores = ::testing::Types<InMemory, InFiles>;
TYPED_TEST_SUITE(UserDefaultsContract, Stores);

TYPED_TEST(UserDefaultsContract, MissingKeyIsAbsentInEveryType) {
  EXPECT_EQ(this->prefs().boolean("key"), std::nullopt);
  EXPECT_EQ(this->prefs().integer("key"), std::nullopt);
  EXPECT_EQ(this->prefs().string("key"), std::nullopt);
  EXPECT_EQ(this->prefs().stringArray("key"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, EveryTypeReadsBackAsSet) {
  this->prefs().set("on", true);
  this->prefs().set("count", -2);
  this->prefs().set("name", "Ω “quoted” \\ \n");
  this->prefs().set("list", {"b", "a", "b"});
  EXPECT_EQ(this->prefs().boolean("on"), true);
  EXPECT_EQ(this->prefs().integer("count"), -2);
  EXPECT_EQ(this->prefs().string("name"), "Ω “quoted” \\ \n");
  EXPECT_EQ(this->prefs().stringArray("list"), (std::vector<std::string>{"b", "a", "b"}));
}

TYPED_TEST(UserDefaultsContract, WholeRangeOfIntegersReadsBack) {
  for (const auto value : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    this->prefs().set("count", value);
    EXPECT_EQ(this->sameDomain.integer("count"), value);
  }
}

TYPED_TEST(UserDefaultsContract, RegisteredDefaultShowsUntilTheKeyIsSet) {
  this->prefs().registerDefault("count", 5);
  EXPECT_EQ(this->prefs().integer("count"), 5);
  this->prefs().set("count", 6);
  EXPECT_EQ(this->prefs().integer("count"), 6);
}

TYPED_TEST(UserDefaultsContract, RegisteredDefaultIsNeverStored) {
  this->prefs().registerDefault("count", 5);
  this->prefs().set("other", true);
  EXPECT_EQ(this->stores().persistentDomain("test.domain"), json({{"other", true}}));
  EXPECT_EQ(this->sameDomain.integer("count"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, SettingTheRegisteredValueStoresIt) {
  this->prefs().registerDefault("count", 5);
  this->prefs().set("count", 5);
  EXPECT_EQ(this->sameDomain.integer("count"), 5);
}

TYPED_TEST(UserDefaultsContract, ValueOfAnotherTypeReadsAsTheRegisteredOne) {
  this->prefs().registerDefault("on", true);
  this->prefs().registerDefault("count", 5);
  this->prefs().registerDefault("name", "default");
  for (const json& wrong : {json("text"), json(5.5), json(nullptr), json::object(), json(2.5e300)}) {
    this->prefs().set("on", wrong);
    this->prefs().set("count", wrong);
    EXPECT_EQ(this->prefs().boolean("on"), true) << wrong;
    EXPECT_EQ(this->prefs().integer("count"), 5) << wrong;
  }
  this->prefs().set("name", 3);
  EXPECT_EQ(this->prefs().string("name"), "default");
}

TYPED_TEST(UserDefaultsContract, WholeFloatIsAnInteger) {
  this->store("count", 5.0);
  EXPECT_EQ(this->prefs().integer("count"), 5);
  this->store("count", -0.0);
  EXPECT_EQ(this->prefs().integer("count"), 0);
}

TYPED_TEST(UserDefaultsContract, NumberBeyondSixtyFourBitsIsNoInteger) {
  for (const json& huge : {json(std::numeric_limits<std::uint64_t>::max()), json(9223372036854775808.0), json(-1e19)}) {
    this->store("count", huge);
    EXPECT_EQ(this->prefs().integer("count"), std::nullopt) << huge;
  }
  this->store("count", -9223372036854775808.0);
  EXPECT_EQ(this->prefs().integer("count"), std::numeric_limits<std::int64_t>::min());
}

TYPED_TEST(UserDefaultsContract, ZeroAndOneReadAsBooleansAndOtherNumbersDoNot) {
  this->store("on", 1);
  EXPECT_EQ(this->prefs().boolean("on"), true);
  this->store("on", 0);
  EXPECT_EQ(this->prefs().boolean("on"), false);
  this->store("on", 2);
  EXPECT_EQ(this->prefs().boolean("on"), std::nullopt);
  this->store("on", -1);
  EXPECT_EQ(this->prefs().boolean("on"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, BooleansAndTextsReadAsNothingElse) {
  this->store("value", true);
  EXPECT_EQ(this->prefs().integer("value"), std::nullopt);
  EXPECT_EQ(this->prefs().string("value"), std::nullopt);
  this->store("value", "true");
  EXPECT_EQ(this->prefs().boolean("value"), std::nullopt);
  this->store("value", "5");
  EXPECT_EQ(this->prefs().integer("value"), std::nullopt);
  this->store("value", "a");
  EXPECT_EQ(this->prefs().stringArray("value"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, ArrayWithAnythingButStringsIsNoStringArray) {
  this->store("list", {"a", 1});
  EXPECT_EQ(this->prefs().stringArray("list"), std::nullopt);
  this->store("list", json::array());
  EXPECT_EQ(this->prefs().stringArray("list"), std::vector<std::string>());
}

TYPED_TEST(UserDefaultsContract, TwoInstancesOverOneDomainAgree) {
  this->prefs().set("count", 1);
  EXPECT_EQ(this->sameDomain.integer("count"), 1);
  this->sameDomain.set("count", 2);
  EXPECT_EQ(this->prefs().integer("count"), 2);
  this->sameDomain.set("on", true);
  this->prefs().set("count", 3);
  EXPECT_EQ(this->stores().persistentDomain("test.domain"), json({{"count", 3}, {"on", true}}));
}

TYPED_TEST(UserDefaultsContract, DomainsDoNotMix) {
  this->prefs().set("count", 1);
  EXPECT_EQ(this->otherDomain.integer("count"), std::nullopt);
  EXPECT_EQ(this->stores().persistentDomain("test.other"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, MissingDomainIsAbsent) {
  EXPECT_EQ(this->stores().persistentDomain("test.domain"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, ReplacedDomainIsSeenAtTheNextRead) {
  this->prefs().set("count", 1);
  this->prefs().set("old", true);
  EXPECT_TRUE(this->stores().setPersistentDomain("test.domain", {{"count", 2}}));
  EXPECT_EQ(this->prefs().integer("count"), 2);
  EXPECT_EQ(this->prefs().boolean("old"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, RemovedDomainIsForgotten) {
  this->prefs().registerDefault("count", 5);
  this->prefs().set("count", 1);
  this->stores().removePersistentDomain("test.domain");
  EXPECT_EQ(this->stores().persistentDomain("test.domain"), std::nullopt);
  EXPECT_EQ(this->prefs().integer("count"), 5);
}

TYPED_TEST(UserDefaultsContract, RemovingAMissingDomainDoesNothing) {
  this->otherDomain.set("count", 1);
  this->stores().removePersistentDomain("test.domain");
  EXPECT_EQ(this->otherDomain.integer("count"), 1);
}

}  // namespace
}  // namespace nimbo
