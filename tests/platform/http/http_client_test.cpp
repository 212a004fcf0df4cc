// SPDX-License-Identifier: MIT
// What the client makes of what servers answer.
#include "platform/http_client.h"

#include "platform/http/http_client_fixture.h"

namespace nimbo {
namespace {

using Headers = std::vector<std::pair<std::string, std::string>>;
using std::chrono::seconds;

TEST_F(HttpClientTest, AnswerComesWithStatusHeadersAndBody) {
  const auto answer =
      get(request(server.url("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                             "X-Padded: \t a b \r\nContent-Length: 2\r\n\r\n{}")));
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 200);
  EXPECT_EQ(answer->headers,
            (Headers{{"content-type", "application/json"}, {"x-padded", "a b"}, {"content-length", "2"}}));
  EXPECT_EQ(answer->body, "{}");
}

TEST_F(HttpClientTest, RequestIsAGetWithItsHeadersAndTheProgramsNameAndNothingElse) {
  auto wanted = request(server.url("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
  wanted.bearerToken = Secret("abc");
  wanted.headers = {{"Accept", "application/json"}};
  ASSERT_TRUE(get(std::move(wanted)));
  EXPECT_EQ(server.request(1),
            "GET /answer/1 HTTP/1.1\r\nHost: localhost:" + server.port() +
                "\r\nAuthorization: Bearer abc\r\nUser-Agent: Nimbo/1.2\r\nAccept: application/json\r\n\r\n");
}

TEST_F(HttpClientTest, EveryStatusIsAnAnswer) {
  for (const int status : {204, 301, 304, 401, 403, 404, 429, 500, 503}) {
    const auto answer = get(request(server.url("HTTP/1.1 " + std::to_string(status) +
                                               " Whatever\r\n"
                                               "Retry-After: 30\r\nContent-Length: 0\r\n\r\n")));
    ASSERT_TRUE(answer) << status;
    EXPECT_EQ(answer->status, status);
    EXPECT_EQ(answer->header("retry-after"), "30");
    EXPECT_EQ(answer->header("retry"), std::nullopt);
  }
}

TEST_F(HttpClientTest, RefusalStandsWhateverBecomesOfItsBody) {
  for (const int status : {302, 401, 429, 500}) {
    const auto head = "HTTP/1.1 " + std::to_string(status) + " No\r\nRetry-After: 3600\r\n";
    for (const auto& [rest, manner] : {std::pair("\r\n", "flood"), {"Content-Length: 100\r\n\r\nno", "cut"}}) {
      const auto answer = get(request(server.url(head + rest, manner)));
      ASSERT_TRUE(answer) << status << manner;
      EXPECT_EQ(answer->status, status);
      EXPECT_EQ(answer->header("retry-after"), "3600");
    }
  }
}

TEST_F(HttpClientTest, TokenThatIsRefusedIsNotOfferedAgain) {
  auto wanted = request(
      server.url("HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Bearer realm=\"x\"\r\nContent-Length: 0\r\n\r\n"));
  wanted.bearerToken = Secret("abc");
  const auto answer = get(std::move(wanted));
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 401);
  EXPECT_EQ(server.requests(), 1);
}

TEST_F(HttpClientTest, BodyMayComeInChunksOrEndWithTheConnection) {
  const auto chunked =
      get(request(server.url("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                             "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n")));
  ASSERT_TRUE(chunked);
  EXPECT_EQ(chunked->body, "abcde");
  const auto trailed =
      get(request(server.url("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                             "3\r\nabc\r\n0\r\nChecksum: 1\r\n\r\n")));
  ASSERT_TRUE(trailed);
  EXPECT_EQ(trailed->body, "abc");
  const auto unmeasured = get(request(server.url("HTTP/1.0 200 OK\r\n\r\nall of it")));
  ASSERT_TRUE(unmeasured);
  EXPECT_EQ(unmeasured->body, "all of it");
}

TEST_F(HttpClientTest, HeadersOfAPreliminaryAnswerAreForgotten) {
  const auto answer =
      get(request(server.url("HTTP/1.1 103 Early Hints\r\nLink: early\r\n\r\n"
                             "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx")));
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 200);
  EXPECT_EQ(answer->headers, (Headers{{"content-length", "1"}}));
}

TEST_F(HttpClientTest, RedirectIsDeliveredAndTheOtherServerNeverAsked) {
  HttpsServer other(authority());
  const auto elsewhere = other.url("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
  auto wanted = request(server.url("HTTP/1.1 302 Found\r\nLocation: " + elsewhere + "\r\nContent-Length: 0\r\n\r\n"));
  wanted.bearerToken = Secret("abc");
  const auto answer = get(std::move(wanted));
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 302);
  EXPECT_EQ(answer->header("location"), elsewhere);
  EXPECT_EQ(server.requests(), 1);
  EXPECT_EQ(other.requests(), 0);
  ASSERT_TRUE(get(request(elsewhere))) << "the other server would have answered";
}

TEST_F(HttpClientTest, CookiesAreNeitherKeptNorSent) {
  const auto url =
      server.url("HTTP/1.1 200 OK\r\nSet-Cookie: a=b\r\nCache-Control: max-age=1000\r\nContent-Length: 0\r\n\r\n");
  ASSERT_TRUE(get(request(url)));
  ASSERT_TRUE(get(request(url)));
  ASSERT_EQ(server.requests(), 2) << "nor is an answer kept";
  EXPECT_EQ(server.request(2).find("ookie"), std::string::npos);
}

TEST_F(HttpClientTest, SeveralRequestsRunSideBySide) {
  int answered = 0;
  const auto count = [&answered](const HttpClient::Answer& answer) { answered += answer ? 1 : 0; };
  const auto slow = client.get(request(server.url("", "silence")), count);
  std::vector<Subscription> quick;
  for (int n = 0; n < 5; ++n) {
    quick.push_back(client.get(request(server.url("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n")), count));
  }
  EXPECT_TRUE(runUntil([&answered] { return answered == 5; }));
}

TEST_F(HttpClientTest, GarbageIsNotHttp) {
  EXPECT_EQ(failure(request(server.url("SSH-2.0-OpenSSH_9.2\r\n"))), HttpFailure::notHttp);
  EXPECT_EQ(failure(request(server.url("{\"an\": \"answer without a head\"}"))), HttpFailure::notHttp);
  for (const char* const line : {"HTTP/", "HTTP/1.1", "HTTP/x.y zz", "HTTP/1.1 zzz", "HTTP/1.1 20", "HTTP/x.y 200 OK",
                                 "HTTP/1.1 099", "HTTP/1.1 -20"}) {
    EXPECT_EQ(failure(request(server.url(std::string(line) + "\r\n\r\n"))), HttpFailure::notHttp) << line;
  }
}

TEST_F(HttpClientTest, AnswerThatIsCutOffIsNone) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n";
  EXPECT_EQ(failure(request(server.url(head + "{\"half\":"))), kUnreachable);
  EXPECT_EQ(failure(request(server.url(head + "{\"half\":", "cut"))), kUnreachable);
  EXPECT_EQ(failure(request(server.url("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab"))), kUnreachable);
  EXPECT_EQ(failure(request(server.url(""))), kUnreachable);
  EXPECT_EQ(failure(request(server.url("HTTP/1.1 200 OK\r\nContent-Le", "cut"))), kUnreachable);
}

TEST_F(HttpClientTest, AnswerWithoutEndIsGivenUpAtTheSizeLimit) {
  auto endless = request(server.url("HTTP/1.1 200 OK\r\n\r\n", "flood"));
  endless.bodyLimit = 100'000;
  EXPECT_EQ(failure(std::move(endless)), kUnreachable);
  EXPECT_EQ(failure(request(server.url("HTTP/1.1 200 OK\r\n", "flood"))), kUnreachable) << "of headers";
  EXPECT_TRUE(runUntil([this] { return server.left() == 2; }));
}

TEST_F(HttpClientTest, BodyOfExactlyTheLimitIsTaken) {
  const auto limited = [this](std::size_t size, std::size_t limit) {
    auto wanted = request(
        server.url("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n" + std::string(size, 'x')));
    wanted.bodyLimit = limit;
    return get(std::move(wanted));
  };
  const auto whole = limited(100, 100);
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->body.size(), 100U);
  EXPECT_FALSE(limited(101, 100));
  EXPECT_TRUE(limited(3U << 20, 3U << 20)) << "also above the usual limit";
  EXPECT_FALSE(limited((1U << 20) + 1, HttpRequest{}.bodyLimit));
}

TEST_F(HttpClientTest, SilentServerIsGivenUpAtTheIdleLimit) {
  for (const char* const answer : {"", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"}) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(failure(limited(server.url(answer, "silence"), seconds{1}, seconds{20})), kUnreachable) << answer;
    EXPECT_GE(std::chrono::steady_clock::now() - begin, seconds{1});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds{5});
  }
}

TEST_F(HttpClientTest, SlowServerIsGivenUpAtTheWholeLimitOnly) {
  for (const char* const answer : {"HTTP/1.1 200 OK\r\nX: ", "HTTP/1.1 200 OK\r\n\r\n"}) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(failure(limited(server.url(answer, "drip"), seconds{1}, seconds{2})), kUnreachable) << answer;
    EXPECT_GE(std::chrono::steady_clock::now() - begin, seconds{2});
    EXPECT_LT(std::chrono::steady_clock::now() - begin, seconds{8});
  }
}

TEST_F(HttpClientTest, OnlyHttpsIsSpoken) {
  for (const char* const scheme : {"http", "file", "ftp", "HTTP"}) {
    EXPECT_EQ(failure(request(scheme + ("://localhost:" + server.port()) + "/answer/1")), kUnreachable) << scheme;
  }
  EXPECT_EQ(failure(request("")), kUnreachable);
  EXPECT_EQ(failure(request("https://")), kUnreachable);
}

TEST_F(HttpClientTest, HeaderThatWouldBeginAnotherIsNotSent) {
  for (const char* const value : {"a\r\nX-Evil: b", "a\nb", "a\x7f"}) {
    auto wanted = request(server.url("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    wanted.headers = {{"Accept", value}};
    EXPECT_EQ(failure(std::move(wanted)), kUnreachable);
    auto withToken = request(server.url("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
    withToken.bearerToken = Secret(value);
    EXPECT_EQ(failure(std::move(withToken)), kUnreachable);
  }
  EXPECT_EQ(server.requests(), 0);
}

TEST_F(HttpClientTest, WithoutTheModuleNothingIsReached) {
  DlModuleLoader nothing("/nonexistent");
  ModuleHttpClient lame(loop, nothing, {});
  bool during = true;
  std::optional<HttpClient::Answer> answer;
  const auto subscription = lame.get(request("https://localhost"), [&](HttpClient::Answer given) {
    EXPECT_FALSE(during) << "later, from the loop";
    answer = std::move(given);
  });
  during = false;
  ASSERT_TRUE(runUntil([&answer] { return answer.has_value(); }));
  ASSERT_FALSE(*answer);
  EXPECT_EQ(answer->error(), kUnreachable);
}

}  // namespace
}  // namespace nimbo
