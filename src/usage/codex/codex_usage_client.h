// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/clock.h"
#include "platform/http_client.h"
#include "usage/codex/usage_credential_reader.h"
#include "usage/usage_model.h"

namespace nimbo {

/// The service that knows the limits of a Codex subscription.
inline constexpr const char* kCodexServiceHost = "https://chatgpt.com";

/// Reads the limits of the user's Codex subscription from its service, with the sign-in of the Codex
/// command-line tool. Main thread only.
class CodexUsageClient {
 public:
  /// All outlive it, but for `reader`, which gives it the sign-in.
  struct Services {
    UsageCredentialReader& credentials;
    UsageCredentialReader::Reader reader;
    HttpClient& http;
    const Clock& clock;
    const Dates& dates;
  };

  explicit CodexUsageClient(Services services, std::string serviceHost = kCodexServiceHost);

  /// A UsageRead. The client outlives the subscription.
  [[nodiscard]] Subscription read(UsageRequest request, std::function<void(UsageOutcome)> done) const;

 private:
  struct Reading;

  [[nodiscard]] HttpRequest usageRequest(UsageCredentials credentials) const;
  [[nodiscard]] UsageOutcome conclude(const HttpClient::Answer& answer) const;
  [[nodiscard]] UsageOutcome rateLimited(const HttpResponse& response) const;

  const Services services_;
  const std::string serviceHost_;
};

}  // namespace nimbo
