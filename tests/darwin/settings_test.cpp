// SPDX-License-Identifier: MIT
#include "settings/settings.h"
#include "darwin/fakes/fake_preferences.h"
#include "platform/contracts/user_defaults_contract.h"
#include "platform/darwin/settings/cf_bundle_info.h"
#include "platform/darwin/settings/cf_user_defaults.h"

namespace nimbo {
namespace {

using nlohmann::json;

constexpr char kDomain[] = "test.domain";

struct CfStore final : UserDefaultsHost {
  [[nodiscard]] UserDefaultsDomains& domains() override { return all; }
  [[nodiscard]] std::unique_ptr<UserDefaults> open(const std::string& domain) override {
    return std::make_unique<CfUserDefaults>(domain, [](const auto& work) { work(); });
  }

  fake::Preferences system;
  CfUserDefaultsDomains all;
};
INSTANTIATE_TEST_SUITE_P(Cf, UserDefaultsContract, testing::Values(makeUserDefaultsHost<CfStore>));

class CfUserDefaultsTest : public testing::Test {
 protected:
  [[nodiscard]] CFTypeRef stored(const char* key) { return store.system.current[kDomain].at(key).get(); }
  void storeByHand(const char* key, const fake::Held& value) {
    store.system.current[kDomain].insert_or_assign(key, value);
  }

  CfStore store;
  std::unique_ptr<UserDefaults> defaults = store.open(kDomain);
};

TEST_F(CfUserDefaultsTest, ValuesHaveTheSystemsTypes) {
  defaults->set("on", true);
  defaults->set("count", 5);
  defaults->set("ratio", 0.5);
  defaults->set("name", "Ω");
  defaults->set("list", {"a"});
  EXPECT_EQ(stored("on"), kCFBooleanTrue);
  EXPECT_EQ(CFGetTypeID(stored("count")), CFNumberGetTypeID());
  EXPECT_FALSE(CFNumberIsFloatType(static_cast<CFNumberRef>(stored("count"))));
  EXPECT_TRUE(CFNumberIsFloatType(static_cast<CFNumberRef>(stored("ratio"))));
  EXPECT_EQ(fake::utf8(stored("name")), "Ω");
  EXPECT_EQ(CFGetTypeID(stored("list")), CFArrayGetTypeID());
}

TEST_F(CfUserDefaultsTest, WhatAnotherProgramChangesIsSeenAtTheNextRead) {
  defaults->set("count", 1);
  storeByHand("count", fake::number(2));
  EXPECT_EQ(defaults->integer("count"), 2);
}

TEST_F(CfUserDefaultsTest, TextsOfAllSortsComeAsUtf8) {
  storeByHand("name", fake::text("🜁 \xED\xA0\x80 end"));  // half of a character amid it
  EXPECT_EQ(defaults->string("name"), "🜁 ? end");
  defaults->set("name", "a\xff");
  EXPECT_EQ(fake::utf8(stored("name")), "a\xEF\xBF\xBD");
}

TEST_F(CfUserDefaultsTest, NumberTooLargeIsNoInteger) {
  defaults->set("count", std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(defaults->integer("count"), std::nullopt);
}

TEST_F(CfUserDefaultsTest, ChangesAreWrittenInTheBackgroundAndAllByTheEnd) {
  std::vector<std::function<void()>> background;
  {
    CfUserDefaults slow(kDomain, [&](auto work) { background.push_back(std::move(work)); });
    slow.set("count", 1);
    slow.set("on", true);
    EXPECT_EQ(slow.integer("count"), 1);
    EXPECT_TRUE(store.system.written.empty());
    background.at(0)();
    EXPECT_EQ(store.system.written[kDomain].size(), 2U);
    background.at(1)();
    EXPECT_EQ(store.system.timesWritten, 1) << "nothing was left to write";
    slow.set("name", "last");
  }
  EXPECT_EQ(store.system.written[kDomain].size(), 3U);
  background.at(2)();
}

TEST_F(CfUserDefaultsTest, WhatCouldNotBeWrittenIsWrittenWithTheNextChange) {
  store.system.failsToWrite = true;
  defaults->set("count", 1);
  EXPECT_EQ(defaults->integer("count"), 1);
  store.system.failsToWrite = false;
  defaults->set("on", true);
  EXPECT_EQ(store.system.written[kDomain].size(), 2U);
}

TEST_F(CfUserDefaultsTest, WholeDomainThatCannotBeWrittenFailsAndTheOldOneStands) {
  defaults->set("old", 1);
  store.system.failsToWrite = true;
  EXPECT_FALSE(store.all.setPersistentDomain(kDomain, {{"new", 2}}));
  EXPECT_EQ(store.all.persistentDomain(kDomain), json({{"old", 1}}));
  store.system.failsToWrite = false;
  EXPECT_FALSE(store.all.setPersistentDomain(kDomain, json::array({1})));
}

TEST_F(CfUserDefaultsTest, MigrationKeepsWhatOnlyPropertyListsKnow) {
  constexpr char kNow[] = "com.quellwerk.Nimbo";
  auto& system = store.system.current;
  system[kNow]["SULastCheckTime"] = fake::owned(CFDateCreate(nullptr, 1234.5));
  system[kNow]["nested"] = fake::array({fake::dictionary({{"date", system[kNow]["SULastCheckTime"]}})});
  const UInt8 bytes[] = {1, 0, 2};
  system["com.quellwerk.Velarin"]["displayMode"] = fake::owned(CFDataCreate(nullptr, bytes, 3));
  migratePreviousIdentity(store.all);
  const auto date = system[kNow].at("SULastCheckTime");
  ASSERT_EQ(CFGetTypeID(date.get()), CFDateGetTypeID());
  EXPECT_EQ(CFDateGetAbsoluteTime(static_cast<CFDateRef>(date.get())), 1234.5);
  const auto data = system[kNow].at("displayMode");
  ASSERT_EQ(CFGetTypeID(data.get()), CFDataGetTypeID());
  EXPECT_EQ(CFDataGetLength(static_cast<CFDataRef>(data.get())), 3);
  EXPECT_EQ(CFDataGetBytePtr(static_cast<CFDataRef>(data.get()))[2], 2);
  const auto nested = static_cast<CFArrayRef>(system[kNow].at("nested").get());
  const auto inner = static_cast<CFDictionaryRef>(CFArrayGetValueAtIndex(nested, 0));
  EXPECT_EQ(CFGetTypeID(CFDictionaryGetValue(inner, fake::text("date").get())), CFDateGetTypeID());
  EXPECT_EQ(system[kNow].at("didMigrateNimboIdentity").get(), kCFBooleanTrue);
  EXPECT_EQ(store.system.written[kNow].size(), 4U);
  EXPECT_EQ(system["com.quellwerk.Velarin"].size(), 1U);
}

TEST_F(CfUserDefaultsTest, TreeThatIsTooDeepIsCut) {
  fake::Held deep = fake::number(1);
  for (int level = 0; level < 1000; ++level) deep = fake::array({deep});
  storeByHand("deep", deep);
  const auto domain = store.all.persistentDomain(kDomain);
  ASSERT_TRUE(domain);
  EXPECT_LT(domain->dump().size(), 200U);
}

TEST(CfBundleInfo, IsTheApplications) {
  fake::Bundle bundle;
  bundle.information = {{"CFBundleIdentifier", fake::text("com.quellwerk.Nimbo")},
                        {"CFBundleShortVersionString", fake::text("1.2")},
                        {"CFBundleVersion", fake::number(3)},
                        {"SUFeedURL", fake::text("")},
                        {"NimboAppGroup", fake::text("group")}};
  const auto info = readBundleInfo();
  EXPECT_EQ(info.identifier, "com.quellwerk.Nimbo");
  EXPECT_EQ(info.shortVersion, "1.2");
  EXPECT_EQ(info.version, std::nullopt);
  EXPECT_EQ(info.feedUrl, std::nullopt);
  EXPECT_EQ(info.publicKey, std::nullopt);
  EXPECT_EQ(info.appGroup, "group");
}

TEST(CfBundleInfo, ProgramOutsideOfAnApplicationHasNone) { EXPECT_EQ(readBundleInfo().identifier, std::nullopt); }

}  // namespace
}  // namespace nimbo
