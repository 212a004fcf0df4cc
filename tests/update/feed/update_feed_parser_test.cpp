// SPDX-License-Identifier: MIT
#include "update/feed/update_feed_parser.h"

#include <gtest/gtest.h>

#include "update/feed/signed_feed.h"

namespace nimbo {
namespace {

std::string nested(int levels) {
  std::string open;
  std::string close;
  for (int level = 0; level < levels; ++level) {
    open += "<a>";
    close += "</a>";
  }
  return open + close;
}

TEST(UpdateFeedParser, ItemsComeAsTheyAreWritten) {
  const Publisher publisher;
  const std::vector<UpdateItem> items{publisher.sign(itemFor("new", "1.10")), publisher.sign(itemFor("old", "1.9"))};
  EXPECT_EQ(parseUpdateFeed(feedOf(items)), items);
}

TEST(UpdateFeedParser, FeedWithoutItemsIsAFeed) {
  EXPECT_EQ(parseUpdateFeed(feedAround("")), std::vector<UpdateItem>());
}

TEST(UpdateFeedParser, SpaceCommentsSectionsAndEscapesAreRead) {
  auto item = itemFor("package");
  item.url = "https://x.test/nimbo.deb?a=1&b=2";
  const std::string xml = feedAround(
      "<!-- a comment --><item>\n  <nimbo:version>\n 1.2 \t</nimbo:version>\n"
      "<nimbo:shortVersion><![CDATA[1.2]]></nimbo:shortVersion><nimbo:minimumSystem>2.31</nimbo:minimumSystem>"
      "<nimbo:architecture>&#97;md64</nimbo:architecture><unknown><deep/></unknown>"
      "<enclosure url='https://x.test/nimbo.deb?a=1&amp;b=2' length='7'/><nimbo:sha256>" +
      item.sha256 + "</nimbo:sha256></item>");
  EXPECT_EQ(parseUpdateFeed(xml), std::vector{item});
}

TEST(UpdateFeedParser, SystemMayBeLeftOut) {
  auto item = itemFor("package");
  item.minimumSystem.clear();
  std::string xml = feedOf({item});
  const std::string element = "<nimbo:minimumSystem></nimbo:minimumSystem>";
  xml.erase(xml.find(element), element.size());
  EXPECT_EQ(parseUpdateFeed(xml), std::vector{item});
}

TEST(UpdateFeedParser, ItemsThatAreNotWellFormedAreLeftOut) {
  auto foreign = itemFor("package");
  foreign.url = "http://x.test/nimbo.deb";
  auto nameless = itemFor("package");
  nameless.version.clear();
  EXPECT_EQ(parseUpdateFeed(feedOf({foreign, itemFor("package"), nameless})), std::vector{itemFor("package")});
  EXPECT_EQ(parseUpdateFeed(feedAround("<item/><item>text</item><item><enclosure/></item>")),
            std::vector<UpdateItem>());
}

TEST(UpdateFeedParser, LengthIsADecimalNumberAndNothingElse) {
  for (const char* const length : {"", "0", "07", "7 ", " 7", "+7", "-7", "7.0", "0x7", "99999999999999999999", "7b"}) {
    std::string xml = feedOf({itemFor("package")});
    xml.replace(xml.find("length=\"7\"") + 8, 1, length);
    EXPECT_EQ(parseUpdateFeed(xml), std::vector<UpdateItem>()) << length;
  }
}

TEST(UpdateFeedParser, OtherDocumentsAreNoFeed) {
  const std::string item = xmlOf(itemFor("package"));
  for (const std::string& text : std::vector<std::string>{
           "", " ", "not xml", "{\"json\": true}", "<html><body>Not found</body></html>", "<rss/>", "<rss",
           "<rss version=\"2.0\"><channel>" + item + "</channel></rss>",
           "<rss xmlns:nimbo=\"urn:somebody:else\"><channel>" + item + "</channel></rss>",
           "<rss xmlns:nimbo=\"urn:quellwerk:nimbo:appcast\">" + item + "</rss>",
           "<feed xmlns:nimbo=\"urn:quellwerk:nimbo:appcast\"><channel>" + item + "</channel></feed>",
           std::string("\xFF\xFE<\0r\0s\0s\0/\0>\0", 14)}) {
    EXPECT_EQ(parseUpdateFeed(text), std::nullopt) << text;
  }
}

TEST(UpdateFeedParser, FeedThatIsCutOffAnywhereIsNone) {
  const std::string whole = feedOf({itemFor("package")});
  const std::size_t end = whole.find("</rss>") + 6;
  for (std::size_t size = 0; size < end; ++size) {
    EXPECT_EQ(parseUpdateFeed(std::string_view(whole).substr(0, size)), std::nullopt) << size;
  }
  EXPECT_NE(parseUpdateFeed(std::string_view(whole).substr(0, end)), std::nullopt);
}

TEST(UpdateFeedParser, ZeroByteIsRefused) {
  std::string xml = feedOf({itemFor("package")});
  xml[xml.find("Nimbo")] = '\0';
  EXPECT_EQ(parseUpdateFeed(xml), std::nullopt);
}

TEST(UpdateFeedParser, DocumentTypesAndTheirEntitiesAreRefused) {
  const std::string xml = feedOf({itemFor("package")});
  const auto root = xml.find("<rss");
  for (const char* const type : {"<!DOCTYPE rss>", "<!DOCTYPE rss SYSTEM \"file:///etc/passwd\">",
                                 "<!DOCTYPE rss [<!ENTITY a \"b\"><!ENTITY c \"&a;&a;&a;\">]>"}) {
    auto typed = xml;
    EXPECT_EQ(parseUpdateFeed(typed.insert(root, type)), std::nullopt) << type;
  }
  auto unknown = xml;
  unknown.replace(unknown.find("amd64"), 5, "&arch;");
  EXPECT_EQ(parseUpdateFeed(unknown), std::vector<UpdateItem>());
}

TEST(UpdateFeedParser, SizeIsLimited) {
  std::string xml = feedOf({itemFor("package")});
  xml += std::string(kMaximumFeedBytes - xml.size(), ' ');
  EXPECT_NE(parseUpdateFeed(xml), std::nullopt);
  EXPECT_EQ(parseUpdateFeed(xml + " "), std::nullopt);
}

TEST(UpdateFeedParser, NumberOfItemsIsLimited) {
  std::string items;
  for (std::size_t count = 0; count < kMaximumFeedItems; ++count) items += "<item/>";
  EXPECT_NE(parseUpdateFeed(feedAround(items)), std::nullopt);
  EXPECT_EQ(parseUpdateFeed(feedAround(items + "<item/>")), std::nullopt);
}

TEST(UpdateFeedParser, DepthIsLimitedAndHarmless) {
  EXPECT_NE(parseUpdateFeed(feedAround(nested(10))), std::nullopt);
  EXPECT_EQ(parseUpdateFeed(feedAround(nested(20))), std::nullopt);
  EXPECT_EQ(parseUpdateFeed(feedAround(nested(140'000))), std::nullopt);
  std::string open;
  while (open.size() + 3 <= kMaximumFeedBytes) open += "<a>";
  EXPECT_EQ(parseUpdateFeed(open), std::nullopt);
}

}  // namespace
}  // namespace nimbo
