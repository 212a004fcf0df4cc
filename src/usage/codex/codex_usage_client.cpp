// SPDX-License-Identifier: MIT
#include "usage/codex/codex_usage_client.h"

#include <utility>

#include "usage/codex/usage_response_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr UsageProvider kProvider = UsageProvider::codex;

UsageOutcome failure(std::string message) { return tl::unexpected(UsageError{std::move(message)}); }

}  // namespace

/// One read: the sign-in, then the request. It belongs to the subscription.
struct CodexUsageClient::Reading {
  std::function<void(UsageOutcome)> done;
  Subscription step;  ///< what is waited for now

  void finish(UsageOutcome outcome) {
    if (const auto continuation = std::exchange(done, nullptr)) continuation(std::move(outcome));
  }
};

CodexUsageClient::CodexUsageClient(Services services, std::string serviceHost)
    : services_(std::move(services)), serviceHost_(std::move(serviceHost)) {}

Subscription CodexUsageClient::read(UsageRequest request, std::function<void(UsageOutcome)> done) const {
  const auto reading = std::make_shared<Reading>(Reading{std::move(done), {}});
  const auto onCredentials = [this, weak = std::weak_ptr(reading)](UsageCredentialReader::Outcome credentials) {
    const auto current = weak.lock();
    if (!current) return;
    if (!credentials) return current->finish(tl::unexpected(std::move(credentials.error())));
    const auto onAnswer = [this, weak](const HttpClient::Answer& answer) {
      if (const auto waiting = weak.lock()) waiting->finish(conclude(answer));
    };
    current->step = services_.http.get(usageRequest(std::move(*credentials)), onAnswer);
  };
  reading->step = services_.credentials.read(kProvider, request == UsageRequest::manual, std::nullopt, services_.reader,
                                             onCredentials);
  return Subscription([reading] {});
}

HttpRequest CodexUsageClient::usageRequest(UsageCredentials credentials) const {
  HttpRequest request{.url = serviceHost_ + "/backend-api/wham/usage",
                      .bearerToken = std::move(credentials.token),
                      .headers = {{"Accept", "application/json"}}};
  if (credentials.accountId) request.headers.emplace_back("ChatGPT-Account-Id", std::move(*credentials.accountId));
  return request;
}

UsageOutcome CodexUsageClient::conclude(const HttpClient::Answer& answer) const {
  if (!answer) {
    if (answer.error() == HttpFailure::notHttp) return failure(usage_messages::kNoHttpResponse);
    return tl::unexpected(
        UsageError{.message = usage_messages::kProviderUnreachable, .retry = UsageRetry::withNetwork});
  }
  switch (answer->status) {
    case 200:
      return parseUsageResponse(answer->body, kProvider, services_.clock.now());
    case 401:
      return failure(usage_messages::signInExpired(kProvider));
    case 403:
      return failure(usage_messages::kSignInCannotReadUsage);
    case 429:
      return rateLimited(*answer);
    default:
      return failure(usage_messages::serviceUnavailable(answer->status));
  }
}

UsageOutcome CodexUsageClient::rateLimited(const HttpResponse& response) const {
  const UsageTime retryNotBefore = services_.clock.now() + rateLimitWait(response.header("retry-after"));
  return tl::unexpected(
      UsageError{usage_messages::rateLimitReached(services_.dates.shortTime(retryNotBefore)), retryNotBefore});
}

}  // namespace nimbo
