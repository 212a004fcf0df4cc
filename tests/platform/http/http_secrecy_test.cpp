// SPDX-License-Identifier: MIT
// What a request carries is the user's sign-in: it must turn up nowhere but at the server.
#include <fstream>
#include <iterator>

#include "platform/http/http_client_fixture.h"
#include "support/services/own_memory.h"

namespace nimbo {
namespace {

const HiddenText kToken(200);

class HttpSecrecyTest : public HttpClientTest {
 protected:
  static HttpRequest secretRequest(std::string url) {
    HttpRequest wanted = request(std::move(url));
    wanted.bearerToken = kToken.secret();
    return wanted;
  }

  /// Files of /proc that other programs of the user can read.
  static std::string publicProcessState() {
    std::string all;
    for (const char* const name : {"cmdline", "environ", "comm", "status", "maps"}) {
      std::ifstream file(std::string("/proc/self/") + name, std::ios::binary);
      all.append(std::istreambuf_iterator<char>(file), {});
    }
    return all;
  }
};

TEST(OwnMemory, FindsATextUntilItIsGone) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  std::string text = kToken.reveal();
  ASSERT_EQ(OwnMemory::find(kToken).size(), 1U);
  EXPECT_TRUE(OwnMemory::find(kToken)[0].dumped);
  std::ranges::fill(text, 'x');
  EXPECT_TRUE(OwnMemory::find(kToken).empty()) << text[0];
}

TEST_F(HttpSecrecyTest, DuringARequestOnlyMemoryOutsideCoreDumpsHasTheToken) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  const auto subscription = client.get(secretRequest(server.url("", "silence")), [](const HttpClient::Answer&) {});
  ASSERT_TRUE(runUntil([this] { return server.requests() == 1; }));
  const auto finds = OwnMemory::find(kToken);
  EXPECT_FALSE(finds.empty());
  for (const MemoryFind& find : finds) EXPECT_FALSE(find.dumped) << find.mapping;
}

TEST_F(HttpSecrecyTest, AfterARequestNoMemoryHasTheToken) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  ASSERT_TRUE(get(secretRequest(server.url(kEmptyAnswer))));
  {
    const auto cancelled = client.get(secretRequest(server.url("", "silence")), [](const HttpClient::Answer&) {});
    ASSERT_TRUE(runUntil([this] { return server.requests() == 2; }));
  }
  ASSERT_TRUE(runUntil([this] { return server.left() == 1; }));
  EXPECT_FALSE(get(secretRequest("https://127.0.0.1:1/")));
  EXPECT_FALSE(get(secretRequest("http://localhost/")));
  for (const MemoryFind& find : OwnMemory::find(kToken)) ADD_FAILURE() << find.mapping;
}

TEST_F(HttpSecrecyTest, WithoutTheModuleTheTokenIsWipedAsWell) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  DlModuleLoader nothing("/nonexistent");
  ModuleHttpClient lame(loop, nothing, {});
  EXPECT_FALSE(get(lame, secretRequest("https://localhost/")));
  for (const MemoryFind& find : OwnMemory::find(kToken)) ADD_FAILURE() << find.mapping;
}

TEST_F(HttpSecrecyTest, NothingIsSaidOfARequestWhateverBecomesOfIt) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  // What libcurl, OpenSSL and the name service know of the environment to make them talk.
  const TemporaryTree home;
  ::setenv("HOME", home.path().c_str(), 1);
  EXPECT_TRUE(get(secretRequest(server.url(kEmptyAnswer))));
  EXPECT_TRUE(get(secretRequest(server.url("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n"))));
  EXPECT_FALSE(get(secretRequest(server.url("garbage"))));
  EXPECT_FALSE(get(secretRequest("https://127.0.0.1:" + server.port() + "/answer/1")));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

TEST_F(HttpSecrecyTest, ProcessListShowsNothingOfARequest) {
  const auto subscription = client.get(secretRequest(server.url("", "silence")), [](const HttpClient::Answer&) {});
  ASSERT_TRUE(runUntil([this] { return server.requests() == 1; }));
  const std::string state = publicProcessState();
  EXPECT_NE(state.find("platform_http_test"), std::string::npos);
  EXPECT_EQ(state.find(kToken.reveal()), std::string::npos);
  EXPECT_NE(server.request(1).find(kToken.reveal()), std::string::npos) << "but the server has it";
}

}  // namespace
}  // namespace nimbo
