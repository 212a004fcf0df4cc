// SPDX-License-Identifier: MIT
#include "update/https_url.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(HttpsUrl, OrdinaryOnesAreTaken) {
  for (const char* const url :
       {"https://example.com", "https://example.com/", "https://example.com:8443/feed.xml?channel=stable#top",
        "https://user@example.com/a%20b", "https://[::1]/feed", "https://127.0.0.1/~x/feed.xml"}) {
    EXPECT_TRUE(isHttpsUrl(url)) << url;
  }
}

TEST(HttpsUrl, OtherSchemesAreRefusedAlsoTheOnesThatLookAlike) {
  for (const char* const url : {"http://example.com/feed", "HTTPS://example.com/feed", "Https://example.com/feed",
                                "httpss://example.com", "file:///etc/passwd", "https", "https:example.com",
                                "https:/example.com", " https://example.com", "//example.com", ""}) {
    EXPECT_FALSE(isHttpsUrl(url)) << url;
  }
}

TEST(HttpsUrl, OnesWithoutAHostAreRefused) {
  for (const char* const url :
       {"https://", "https:///feed", "https://?a", "https://#a", "https://:443/", "https://@/", "https://user@/feed"}) {
    EXPECT_FALSE(isHttpsUrl(url)) << url;
  }
}

TEST(HttpsUrl, CharactersThatNoUrlHasAreRefused) {
  for (const char* const url : {"https://exa mple.com", "https://example.com/\n", "https://example.com/a\"b",
                                "https://example.com/<a>", "https://example.com\\a", "https://exämple.com",
                                "https://example.com/%", "https://example.com/%2", "https://example.com/%zz"}) {
    EXPECT_FALSE(isHttpsUrl(url)) << url;
  }
}

}  // namespace
}  // namespace nimbo
