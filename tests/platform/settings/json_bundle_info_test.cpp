// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_bundle_info.h"

#include <gtest/gtest.h>

#include <string>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

constexpr char kWhole[] = R"({
  "CFBundleIdentifier": "com.example.App",
  "CFBundleShortVersionString": "1.2",
  "CFBundleVersion": "34",
  "SUFeedURL": "https://example.com/feed.xml",
  "SUPublicEDKey": "a2V5",
  "NimboAppGroup": "TEAM.com.example.App",
  "LSUIElement": true
})";

void expectNothing(const BundleInfo& info) {
  EXPECT_EQ(info.identifier, std::nullopt);
  EXPECT_EQ(info.shortVersion, std::nullopt);
  EXPECT_EQ(info.version, std::nullopt);
  EXPECT_EQ(info.feedUrl, std::nullopt);
  EXPECT_EQ(info.publicKey, std::nullopt);
  EXPECT_EQ(info.appGroup, std::nullopt);
}

TEST(JsonBundleInfo, EveryKeyIsRead) {
  const BundleInfo info = parseBundleInfo(kWhole);
  EXPECT_EQ(info.identifier, "com.example.App");
  EXPECT_EQ(info.shortVersion, "1.2");
  EXPECT_EQ(info.version, "34");
  EXPECT_EQ(info.feedUrl, "https://example.com/feed.xml");
  EXPECT_EQ(info.publicKey, "a2V5");
  EXPECT_EQ(info.appGroup, "TEAM.com.example.App");
}

TEST(JsonBundleInfo, EmptyMistypedAndMissingKeysAreAbsent) {
  const BundleInfo info = parseBundleInfo(
      R"({"CFBundleIdentifier": "com.example.App", "CFBundleVersion": 34, "SUFeedURL": "", "SUPublicEDKey": null})");
  EXPECT_EQ(info.identifier, "com.example.App");
  EXPECT_EQ(info.version, std::nullopt);
  EXPECT_EQ(info.feedUrl, std::nullopt);
  EXPECT_EQ(info.publicKey, std::nullopt);
  EXPECT_EQ(info.appGroup, std::nullopt);
}

TEST(JsonBundleInfo, TextThatIsNoObjectHoldsNothing) {
  for (const char* const text : {"", "{", "[]", "\"CFBundleIdentifier\"", "{\"CFBundleIdentifier\": \"\xff\"}"}) {
    SCOPED_TRACE(text);
    expectNothing(parseBundleInfo(text));
  }
}

TEST(JsonBundleInfo, FileIsRead) {
  const TemporaryTree tree;
  EXPECT_EQ(readBundleInfo(tree.write("Info.json", kWhole)).identifier, "com.example.App");
}

TEST(JsonBundleInfo, BuiltFileNamesTheApplicationAndItsVersion) {
  const BundleInfo info = readBundleInfo(NIMBO_INFO_JSON);
  EXPECT_EQ(info.identifier, "com.quellwerk.Nimbo");
  EXPECT_EQ(info.shortVersion, NIMBO_VERSION);
  EXPECT_EQ(info.version, NIMBO_VERSION);
}

TEST(JsonBundleInfo, FileThatCannotBeReadHoldsNothing) {
  const TemporaryTree tree;
  expectNothing(readBundleInfo(tree.path() / "Info.json"));
  expectNothing(readBundleInfo(tree.path()));
}

}  // namespace
}  // namespace nimbo
