// SPDX-License-Identifier: MIT
#include "usage/codex/codex_usage_client.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/mac_wording.h"
#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_http_client.h"
#include "support/fake_main_loop.h"
#include "support/fake_work_queue.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Headers = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kBody =
    R"({"plan_type": "plus", "rate_limit": {
        "primary_window": {"used_percent": 12.5, "limit_window_seconds": 18000, "reset_at": 1773490000},
        "secondary_window": {"used_percent": 100, "limit_window_seconds": 604800, "reset_at": 1773900000}}})";

UsageTime at(std::int64_t secondsSince1970) { return UsageTime(std::chrono::seconds(secondsSince1970)); }

class CodexUsageClientTest : public ::testing::Test {
 protected:
  CodexUsageClientTest() {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
  }

  void read(UsageRequest request = UsageRequest::automatic) {
    outcome.reset();
    reading = client.read(request, [this](UsageOutcome given) {
      EXPECT_FALSE(outcome) << "only once";
      outcome = std::move(given);
    });
  }

  /// Until the request is under way.
  void readUpToTheRequest() {
    read();
    queue.runOne();
    loop.runPosted();
  }

  /// What the user is told when the service answers this.
  std::string messageFor(int status, const std::string& body = {}, Headers headers = {}) {
    readUpToTheRequest();
    EXPECT_TRUE(http.answer(status, body, std::move(headers)));
    return outcome && !*outcome ? outcome->error().message : std::string();
  }

  [[nodiscard]] std::optional<UsageTime> retryNotBefore() const { return outcome->error().retryNotBefore; }

  FakeMainLoop loop;
  FakeWorkQueue queue;
  FakeHttpClient http;
  FakeClock clock;
  FakeDates dates;
  std::optional<std::string> account = "account";
  std::optional<UsageError> signInFailure;
  std::vector<bool> prompts;
  UsageCredentialReader credentials{loop, [this](std::function<void()> work) { queue.async(std::move(work)); },
                                    macWording()};
  CodexUsageClient client{{credentials,
                           [this](UsageProvider provider, bool allowPrompt) -> UsageCredentialReader::Outcome {
                             EXPECT_EQ(provider, UsageProvider::codex);
                             prompts.push_back(allowPrompt);
                             if (signInFailure) return tl::unexpected(*signInFailure);
                             return UsageCredentials{Secret("secret"), account};
                           },
                           http, clock, dates}};
  Subscription reading;
  std::optional<UsageOutcome> outcome;
};

TEST_F(CodexUsageClientTest, RequestCarriesTheSignInToTheServicesUsageAddress) {
  readUpToTheRequest();
  ASSERT_EQ(http.requests.size(), 1U);
  EXPECT_EQ(http.requests[0].url, "https://chatgpt.com/backend-api/wham/usage");
  EXPECT_EQ(http.requests[0].bearerToken.view(), "secret");
  EXPECT_EQ(http.requests[0].headers, (Headers{{"Accept", "application/json"}, {"ChatGPT-Account-Id", "account"}}));
  EXPECT_EQ(http.requests[0].idleLimit, 20s);
  EXPECT_EQ(http.requests[0].wholeLimit, 30s);
}

TEST_F(CodexUsageClientTest, SignInWithoutAccountSendsNoAccountHeader) {
  account.reset();
  readUpToTheRequest();
  EXPECT_EQ(http.requests.at(0).bearerToken.view(), "secret");
  EXPECT_EQ(http.requests.at(0).headers, (Headers{{"Accept", "application/json"}}));
}

TEST_F(CodexUsageClientTest, OnlyAManualReadMayAskTheUser) {
  read(UsageRequest::automatic);
  queue.runOne();
  loop.runPosted();
  read(UsageRequest::manual);
  queue.runOne();
  EXPECT_EQ(prompts, (std::vector<bool>{false, true}));
}

TEST_F(CodexUsageClientTest, WindowsOfTheAnswerBecomeASnapshotWithoutSource) {
  readUpToTheRequest();
  clock.setNow(at(1773480500));
  http.answer(200, kBody);
  ASSERT_TRUE(outcome && *outcome);
  const UsageSnapshot expected{{{"5-hour", 12.5, at(1773490000)}, {"Weekly", 100, at(1773900000)}}, at(1773480500), {}};
  EXPECT_EQ(**outcome, expected);
}

TEST_F(CodexUsageClientTest, FailedSignInIsToldWithoutAskingTheService) {
  signInFailure = UsageError{"No Codex auth.json found."};
  readUpToTheRequest();
  ASSERT_TRUE(outcome && !*outcome);
  EXPECT_EQ(outcome->error(), (UsageError{"No Codex auth.json found."}));
  EXPECT_TRUE(http.requests.empty());
}

TEST_F(CodexUsageClientTest, SignInThatHangsIsToldAfterItsTimeLimit) {
  read();
  loop.advance(10s);
  ASSERT_TRUE(outcome && !*outcome);
  EXPECT_EQ(outcome->error().message, macWording().signInReadTimedOut);
  queue.runOne();
  loop.runPosted();
  EXPECT_TRUE(http.requests.empty());
}

TEST_F(CodexUsageClientTest, RefusalsAreToldByTheirStatus) {
  EXPECT_EQ(messageFor(401), "Sign-in expired. Open Codex to sign in again, then refresh.");
  EXPECT_EQ(messageFor(403), "This sign-in cannot read usage. Check your subscription and sign-in permissions.");
  for (const int status : {201, 204, 302, 304, 400, 404, 500, 503}) {
    EXPECT_EQ(messageFor(status, kBody),
              "Usage service unavailable (HTTP " + std::to_string(status) + "). Retrying later.");
    EXPECT_EQ(retryNotBefore(), std::nullopt);
  }
}

TEST_F(CodexUsageClientTest, RateLimitIsToldWithTheTimeOfItsEnd) {
  // 09:26:53 UTC
  EXPECT_EQ(messageFor(429, "", {{"retry-after", "3600"}}),
            "Provider rate limit reached. Retry at 10:26. Refresh cannot shorten this wait.");
  EXPECT_EQ(retryNotBefore(), clock.now() + 3600s);
}

TEST_F(CodexUsageClientTest, RateLimitWithoutOrWithAShortWaitLastsTenMinutes) {
  const std::string message = "Provider rate limit reached. Retry at 09:36. Refresh cannot shorten this wait.";
  for (const Headers& headers : {Headers{}, Headers{{"retry-after", "30"}}, Headers{{"retry-after", "later"}}}) {
    EXPECT_EQ(messageFor(429, "", headers), message);
    EXPECT_EQ(retryNotBefore(), clock.now() + 600s);
  }
}

TEST_F(CodexUsageClientTest, RateLimitCountsFromTheAnswer) {
  readUpToTheRequest();
  clock.advance(25s);
  http.answer(429);
  EXPECT_EQ(retryNotBefore(), clock.now() + 600s);
}

TEST_F(CodexUsageClientTest, AnswersWithoutLimitsAreTold) {
  EXPECT_EQ(messageFor(200, "[]"), "The provider returned unreadable usage data.");
  EXPECT_EQ(messageFor(200, "{}"), "No supported usage limits returned for this account.");
  EXPECT_EQ(messageFor(200, R"({"rate_limit": {"primary_window": {"used_percent": 100.5}}})"),
            "No supported usage limits returned for this account.");
  EXPECT_NE(messageFor(200, "<html>"), "") << "the JSON reader's own words";
}

TEST_F(CodexUsageClientTest, FailedTransportIsToldApartFromAnAnswerThatIsNotHttp) {
  readUpToTheRequest();
  http.fail(HttpFailure::unreachable);
  EXPECT_EQ(
      outcome->error(),
      (UsageError{"Couldn’t reach the provider. Check your connection and refresh.", {}, UsageRetry::withNetwork}));
  readUpToTheRequest();
  http.fail(HttpFailure::notHttp);
  EXPECT_EQ(outcome->error(), (UsageError{"No response from the provider."}));
}

TEST_F(CodexUsageClientTest, TokenIsInNoMessage) {
  for (const int status : {200, 302, 401, 403, 429, 500}) {
    EXPECT_EQ(messageFor(status, R"({"detail": "secret")").find("secret"), std::string::npos) << status;
  }
}

TEST_F(CodexUsageClientTest, DroppedSubscriptionEndsTheReadAtEveryStep) {
  read();
  reading.reset();
  queue.runOne();
  loop.runPosted();
  EXPECT_TRUE(http.requests.empty()) << "while the sign-in is read";
  read();
  queue.runOne();
  reading.reset();
  loop.runPosted();
  EXPECT_TRUE(http.requests.empty()) << "when the sign-in is on its way";
  readUpToTheRequest();
  reading.reset();
  EXPECT_EQ(http.cancelled(), 1U) << "while the service is asked";
  EXPECT_FALSE(outcome);
}

TEST_F(CodexUsageClientTest, SubscriptionMayEndAndTheNextReadBeginInTheOutcome) {
  int outcomes = 0;
  reading = client.read(UsageRequest::automatic, [&](const UsageOutcome&) {
    ++outcomes;
    read();
  });
  queue.runOne();
  loop.runPosted();
  http.answer(500);
  EXPECT_EQ(outcomes, 1);
  queue.runOne();
  loop.runPosted();
  http.answer(200, kBody);
  EXPECT_TRUE(outcome && *outcome);
}

TEST(CodexServiceHost, MayBeAnother) {
  FakeMainLoop loop;
  FakeHttpClient http;
  const FakeClock clock;
  const FakeDates dates;
  UsageCredentialReader credentials(
      loop, [](const std::function<void()>& work) { work(); }, macWording());
  const CodexUsageClient client(
      {credentials, [](UsageProvider, bool) { return UsageCredentials{Secret("t")}; }, http, clock, dates},
      "https://localhost:1");
  const auto reading = client.read(UsageRequest::automatic, [](const UsageOutcome&) {});
  loop.runPosted();
  EXPECT_EQ(http.requests.at(0).url, "https://localhost:1/backend-api/wham/usage");
}

}  // namespace
}  // namespace nimbo
