// SPDX-License-Identifier: MIT
#include "update/feed/update_item.h"

#include <gtest/gtest.h>

#include "update/feed/signed_feed.h"

namespace nimbo {
namespace {

TEST(UpdateSignature, OnlyTheOwnerOfTheKeyHasSigned) {
  const Publisher publisher;
  const Publisher other;
  const auto item = publisher.sign(itemFor("package"));
  EXPECT_TRUE(isSigned(item, publisher.publicKey()));
  EXPECT_FALSE(isSigned(item, other.publicKey()));
  EXPECT_FALSE(isSigned(other.sign(item), publisher.publicKey()));
  EXPECT_FALSE(isSigned(itemFor("package"), publisher.publicKey())) << "not signed at all";
}

TEST(UpdateSignature, NothingMayBeChangedAfterwards) {
  const Publisher publisher;
  const auto signedItem = publisher.sign(itemFor("package"));
  for (const auto field : {&UpdateItem::version, &UpdateItem::shortVersion, &UpdateItem::minimumSystem,
                           &UpdateItem::architecture, &UpdateItem::url, &UpdateItem::sha256}) {
    auto changed = signedItem;
    (changed.*field).back() ^= 1;
    EXPECT_FALSE(isSigned(changed, publisher.publicKey())) << changed.*field;
    changed.*field = {};
    EXPECT_FALSE(isSigned(changed, publisher.publicKey()));
  }
  auto longer = signedItem;
  ++longer.length;
  EXPECT_FALSE(isSigned(longer, publisher.publicKey()));
}

TEST(UpdateSignature, ContentsCannotMoveFromOneFieldToAnother) {
  const Publisher publisher;
  auto item = itemFor("package");
  item.version = "1";
  item.shortVersion = "2\n3";
  item = publisher.sign(item);
  std::swap(item.version, item.shortVersion);
  item.version = "1\n2";
  item.shortVersion = "3";
  EXPECT_TRUE(isSigned(item, publisher.publicKey())) << "which is why line breaks are not well-formed";
  EXPECT_FALSE(isWellFormed(item));
}

TEST(UpdateSignature, KeysAndSignaturesOfAnotherFormFitNothing) {
  const Publisher publisher;
  const std::string key = publisher.publicKey();
  const auto item = publisher.sign(itemFor("package"));
  for (const std::string& text : {std::string(), std::string("no base64!"), key + "=", key.substr(0, 40), key + "AAAA",
                                  " " + key, key + "\n", std::string(43, 'A') + "="}) {
    EXPECT_FALSE(isSigned(item, text)) << text;
  }
  for (const std::string& text : {std::string(), item.signature + "\n", item.signature.substr(4),
                                  item.signature + "AAAA", std::string("%"), std::string(86, 'A') + "=="}) {
    auto changed = item;
    changed.signature = text;
    EXPECT_FALSE(isSigned(changed, key)) << text;
  }
}

TEST(UpdateSignature, PackageIsRecognizedByLengthAndDigest) {
  const auto item = itemFor("abc");
  // FIPS 180-2, appendix B.1
  EXPECT_EQ(item.sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_TRUE(describes(item, "abc"));
  for (const char* const other : {"", "ab", "abd", "abcd", "ABC"}) EXPECT_FALSE(describes(item, other)) << other;
  auto longer = item;
  longer.length = 4;
  EXPECT_FALSE(describes(longer, "abc"));
}

}  // namespace
}  // namespace nimbo
