// SPDX-License-Identifier: MIT
#include "update/feed/update_item.h"

#include <gtest/gtest.h>

#include "update/feed/signed_feed.h"

namespace nimbo {
namespace {

UpdateItem with(std::string UpdateItem::*field, std::string value) {
  auto item = itemFor("package");
  item.*field = std::move(value);
  return item;
}

TEST(UpdateItem, StatementHoldsAllThatAnUpdateIsJudgedByALineEach) {
  EXPECT_EQ(updateStatement({"120", "1.2", "2.36", "amd64", "https://x.test/n.deb", 7, "abc", "ignored"}),
            "nimbo-update-1\n120\n1.2\n2.36\namd64\nhttps://x.test/n.deb\n7\nabc\n");
  EXPECT_EQ(updateStatement({}), "nimbo-update-1\n\n\n\n\n\n0\n\n");
}

TEST(UpdateItem, OrdinaryOneIsWellFormed) {
  EXPECT_TRUE(isWellFormed(itemFor("package")));
  EXPECT_TRUE(isWellFormed(with(&UpdateItem::minimumSystem, "")));
  EXPECT_TRUE(isWellFormed(with(&UpdateItem::shortVersion, "2 (Harvest)")));
}

TEST(UpdateItem, LineBreaksAreRefusedInEveryField) {
  for (const auto field : {&UpdateItem::version, &UpdateItem::shortVersion, &UpdateItem::minimumSystem,
                           &UpdateItem::architecture, &UpdateItem::url, &UpdateItem::sha256}) {
    const std::string good = itemFor("package").*field;
    for (const std::string& broken : {good + "\n", "\n" + good, good + "\r", good + "\n" + good, good + '\0'}) {
      EXPECT_FALSE(isWellFormed(with(field, broken))) << good;
    }
  }
}

TEST(UpdateItem, FieldsOfAnotherFormAreRefused) {
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::version, "")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::version, "1.2-beta")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::version, std::string(65, '1'))));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::shortVersion, "")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::shortVersion, "1.2 \xE2\x80\xAE")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::shortVersion, std::string(65, 'x'))));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::minimumSystem, "bookworm")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::architecture, "")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::architecture, "AMD64")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::sha256, std::string(63, 'a'))));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::sha256, std::string(64, 'A'))));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::url, "http://updates.test/nimbo.deb")));
  EXPECT_FALSE(isWellFormed(with(&UpdateItem::url, "https://updates.test/" + std::string(3000, 'x') + "/n.deb")));
}

TEST(UpdateItem, LengthHasToBeThatOfAPackage) {
  auto item = itemFor("package");
  item.length = kMaximumPackageBytes;
  EXPECT_TRUE(isWellFormed(item));
  item.length = kMaximumPackageBytes + 1;
  EXPECT_FALSE(isWellFormed(item));
  item.length = 0;
  EXPECT_FALSE(isWellFormed(item));
}

TEST(UpdateItem, FileNameIsTheLastPartOfTheUrl) {
  EXPECT_EQ(packageFileName(with(&UpdateItem::url, "https://x.test/a/b/nimbo_1.2~rc+1-2_amd64.deb")),
            "nimbo_1.2~rc+1-2_amd64.deb");
  EXPECT_EQ(packageFileName(with(&UpdateItem::url, "https://x.test/nimbo.deb?from=/etc/x#/y.deb")), "nimbo.deb");
}

TEST(UpdateItem, NameThatCouldMeanAnythingElseIsNone) {
  for (const char* const url : {"https://x.test/", "https://x.test/nimbo", "https://x.test/nimbo.deb/",
                                "https://x.test/.deb", "https://x.test/.hidden.deb", "https://x.test/..",
                                "https://x.test/a%2Fb.deb", "https://x.test/a%00.deb", "https://x.test/nimbo.desktop",
                                "https://x.test/?nimbo.deb", "https://x.test/a b.deb", "https://x.test/n.DEB"}) {
    EXPECT_EQ(packageFileName(with(&UpdateItem::url, url)), "") << url;
    EXPECT_FALSE(isWellFormed(with(&UpdateItem::url, url))) << url;
  }
  EXPECT_EQ(packageFileName(with(&UpdateItem::url, "https://x.test/" + std::string(197, 'x') + ".deb")), "");
}

}  // namespace
}  // namespace nimbo
