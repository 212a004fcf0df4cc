// SPDX-License-Identifier: MIT
// What happens to a settings file whose text is no settings file: its user may still want to correct it.
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/settings/json_user_defaults_fixture.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

struct Malformed {
  const char* name;
  std::string text;
};

class MalformedText : public JsonUserDefaultsTest, public ::testing::WithParamInterface<Malformed> {};

TEST_P(MalformedText, KeepsLastGoodValuesAndIsSetAsideByTheFirstWrite) {
  defaults.registerDefault("name", "registered");
  defaults.set("count", 1);
  tree.write(kFile, GetParam().text);
  setModified(file(), 1'795'252'536);

  EXPECT_EQ(defaults.integer("count"), 1);
  EXPECT_EQ(defaults.string("name"), "registered");
  EXPECT_EQ(tree.read(kFile), GetParam().text) << "reading must not touch it";

  defaults.set("count", 2);
  const std::string aside = std::string(kFile) + ".unreadable-2026-11-21T09-15-36";
  EXPECT_EQ(names(), (std::vector<std::string>{kFile, aside}));
  EXPECT_EQ(tree.read(aside), GetParam().text);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"count", 2}}));
}

TEST_P(MalformedText, AtStartMeansRegisteredDefaults) {
  tree.write(kFile, GetParam().text);
  defaults.registerDefault("count", 5);
  EXPECT_EQ(defaults.integer("count"), 5);
  EXPECT_EQ(tree.read(kFile), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, MalformedText,
    ::testing::Values(
        Malformed{"Empty", ""}, Malformed{"WhiteSpace", " \n"}, Malformed{"TrailingComma", R"({"count": 7,})"},
        Malformed{"CutOff", R"({"count": 7)"}, Malformed{"MoreAfterIt", R"({"count": 7} x)"},
        Malformed{"Array", R"([{"count": 7}])"}, Malformed{"Null", "null"},
        Malformed{"InvalidUtf8", "{\"name\": \"\xff\xfe\", \"count\": 7}"},
        Malformed{"LoneSurrogate", R"({"name": "\ud800", "count": 7})"},
        Malformed{"NumberBeyondDouble", R"({"count": 7, "huge": 1e999})"},
        Malformed{"TooDeep", "{\"count\": 7, \"deep\": " + std::string(64, '[') + std::string(64, ']') + "}"},
        Malformed{"FarTooDeep", "{\"deep\": " + std::string(500'000, '[') + std::string(500'000, ']') + "}"},
        Malformed{"TooLong", R"({"count": 7, "pad": ")" + std::string(std::size_t{1} << 20, 'x') + "\"}"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(JsonUserDefaultsTest, WellNestedObjectIsStillRead) {
  tree.write(kFile, "{\"count\": 7, \"deep\": " + std::string(63, '[') + std::string(63, ']') + "}");
  EXPECT_EQ(defaults.integer("count"), 7);
}

TEST_F(JsonUserDefaultsTest, MistakeCorrectedByHandIsReadAgainAndNothingIsSetAside) {
  defaults.set("count", 1);
  tree.write(kFile, R"({"count": 2,})");
  EXPECT_EQ(defaults.integer("count"), 1);
  tree.write(kFile, R"({"count": 2})");
  EXPECT_EQ(defaults.integer("count"), 2);
  defaults.set("count", 3);
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

TEST_F(JsonUserDefaultsTest, SettingTheValueInEffectLeavesAMalformedFileInPlace) {
  defaults.set("count", 1);
  tree.write(kFile, "{oops");
  defaults.set("count", 1);
  EXPECT_EQ(tree.read(kFile), "{oops");
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

TEST_F(JsonUserDefaultsTest, NamesOfFilesSetAsideNeverCollide) {
  for (int attempt = 0; attempt < 3; ++attempt) {
    tree.write(kFile, "{oops " + std::to_string(attempt));
    setModified(file(), 1'795'252'536);
    defaults.set("attempt", attempt);
  }
  const std::string aside = std::string(kFile) + ".unreadable-2026-11-21T09-15-36";
  EXPECT_EQ(names(), (std::vector<std::string>{kFile, aside, aside + "-2", aside + "-3"}));
  EXPECT_EQ(tree.read(aside), "{oops 0");
  EXPECT_EQ(tree.read(aside + "-2"), "{oops 1");
  EXPECT_EQ(tree.read(aside + "-3"), "{oops 2");
}

TEST_F(JsonUserDefaultsTest, AbsurdFileTimesAreSurvived) {
  for (const std::time_t absurd : {std::time_t{-5'000'000'000}, std::time_t{12'000'000'000}}) {
    tree.write(kFile, "{oops");
    setModified(file(), absurd);
    defaults.set("when", absurd);
    EXPECT_EQ(defaults.integer("when"), absurd);
  }
  EXPECT_EQ(names().size(), 3U);
}

TEST_F(JsonUserDefaultsTest, MalformedTargetOfALinkIsSetAsideBesideTheTarget) {
  setModified(tree.write("dotfiles/settings.json", "{oops"), 1'795'252'536);
  fs::create_symlink("dotfiles/settings.json", file());
  defaults.set("count", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(tree.read("dotfiles/settings.json.unreadable-2026-11-21T09-15-36"), "{oops");
  EXPECT_EQ(json::parse(tree.read("dotfiles/settings.json")), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTest, WholeDomainIsNotReplacedOverAMalformedFile) {
  JsonUserDefaultsDomains domains(tree.path());
  tree.write(kFile, "{oops");
  EXPECT_EQ(domains.persistentDomain(kDomain), std::nullopt);
  EXPECT_FALSE(domains.setPersistentDomain(kDomain, {{"count", 1}}));
  EXPECT_EQ(tree.read(kFile), "{oops");
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

}  // namespace
}  // namespace nimbo
