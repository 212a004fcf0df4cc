// SPDX-License-Identifier: MIT
// The fakes of the network and of files with secrets keep the interfaces' promises themselves.
#include <gtest/gtest.h>

#include <optional>

#include "support/fake_http_client.h"
#include "support/fake_secret_files.h"

namespace nimbo {
namespace {

TEST(FakeHttpClient, RequestsAreRecordedAndAnsweredInTheirOrder) {
  FakeHttpClient http;
  std::vector<int> statuses;
  const auto take = [&statuses](const HttpClient::Answer& answer) { statuses.push_back(answer ? answer->status : -1); };
  const auto first = http.get({.url = "https://first", .headers = {{"Accept", "x"}}}, take);
  const auto second = http.get({.url = "https://second", .headers = {}}, take);
  ASSERT_EQ(http.requests.size(), 2U);
  EXPECT_EQ(http.requests[0].url, "https://first");
  EXPECT_EQ(http.requests[0].headers[0].first, "Accept");
  EXPECT_TRUE(http.answer(200, "body"));
  EXPECT_TRUE(http.fail(HttpFailure::unreachable));
  EXPECT_FALSE(http.answer(500)) << "nobody is left";
  EXPECT_EQ(statuses, (std::vector<int>{200, -1}));
  EXPECT_EQ(http.cancelled(), 0U);
}

TEST(FakeHttpClient, DroppedSubscriptionIsCountedAndNeverAnswered) {
  FakeHttpClient http;
  int answers = 0;
  auto request = http.get({}, [&answers](const HttpClient::Answer&) { ++answers; });
  EXPECT_EQ(http.pending(), 1U);
  request.reset();
  EXPECT_EQ(http.cancelled(), 1U);
  EXPECT_FALSE(http.answer(200));
  EXPECT_EQ(answers, 0);
}

TEST(FakeHttpClient, SubscriptionMayEndInItsAnswerOrOutliveTheClient) {
  std::optional<FakeHttpClient> http(std::in_place);
  Subscription request;
  request = http->get({}, [&request](const HttpClient::Answer&) { request.reset(); });
  EXPECT_TRUE(http->answer(200));
  EXPECT_FALSE(request);
  EXPECT_EQ(http->cancelled(), 0U) << "it had been answered";
  request = http->get({}, [](const HttpClient::Answer&) {});
  http.reset();
  request.reset();
}

TEST(FakeSecretFiles, HaveWhatTheTestPutsThere) {
  FakeSecretFiles files;
  files.texts["/a"] = "text";
  EXPECT_EQ(files.read("/a", 4).value().view(), "text");
  EXPECT_EQ(files.read("/a", 3).error(), std::errc::file_too_large);
  EXPECT_EQ(files.read("/b", 3).error(), std::errc::no_such_file_or_directory);
  EXPECT_EQ(files.reads, (std::vector<std::string>{"/a", "/a", "/b"}));
}

}  // namespace
}  // namespace nimbo
