// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <systemd/sd-event.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/http/module_http_client.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "support/services/https_server.h"
#include "support/services/sanitizers.h"

namespace nimbo {

inline constexpr auto kUnreachable = HttpFailure::unreachable;
inline constexpr const char* kEmptyAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";

inline constexpr const char* kProxyVariables[] = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy",
                                                  "ALL_PROXY",  "no_proxy",    "NO_PROXY"};

/// The real client and a real server, which it trusts.
class HttpClientTest : public ::testing::Test {
 protected:
  HttpClientTest() {
    for (const char* const name : kProxyVariables) ::unsetenv(name);
  }
  ~HttpClientTest() override {
    for (const char* const name : kProxyVariables) ::unsetenv(name);
  }

  // Making keys takes a while, so all tests share them.
  static const TestAuthority& authority() {
    static const TestAuthority kAuthority;
    return kAuthority;
  }

  static HttpOptions trusting(std::string certificateFile) {
    return {
        .userAgent = "Nimbo/1.2", .certificateFile = std::move(certificateFile), .certificateFolder = "/nonexistent"};
  }

  static HttpRequest request(std::string url) { return {.url = std::move(url)}; }

  static HttpRequest limited(std::string url, std::chrono::seconds idle, std::chrono::seconds whole) {
    return {.url = std::move(url), .idleLimit = idle, .wholeLimit = whole};
  }

  /// Turns the loop until `condition` holds; false when it did not in time.
  [[nodiscard]] bool runUntil(const std::function<bool()>& condition,
                              std::chrono::milliseconds bound = std::chrono::seconds(20)) {
    // For conditions that come true outside this process.
    const auto look = loop.every(std::chrono::milliseconds(5), {}, [] {});
    const auto end = std::chrono::steady_clock::now() + bound;
    while (!condition() && std::chrono::steady_clock::now() < end) sd_event_run(loop.event(), UINT64_MAX);
    return condition();
  }

  [[nodiscard]] HttpClient::Answer get(HttpRequest wanted) { return get(client, std::move(wanted)); }

  [[nodiscard]] HttpClient::Answer get(HttpClient& with, HttpRequest wanted) {
    std::optional<HttpClient::Answer> answer;
    const auto subscription =
        with.get(std::move(wanted), [&answer](HttpClient::Answer given) { answer = std::move(given); });
    EXPECT_TRUE(runUntil([&answer] { return answer.has_value(); }));
    return answer.value_or(tl::unexpected(HttpFailure::unreachable));
  }

  /// The failure; nothing when there was an answer.
  [[nodiscard]] std::optional<HttpFailure> failure(HttpRequest wanted) {
    const auto answer = get(std::move(wanted));
    return answer ? std::nullopt : std::optional(answer.error());
  }

  SdEventMainLoop loop;
  DlModuleLoader modules{NIMBO_MODULE_FOLDER};
  HttpsServer server{authority()};
  ModuleHttpClient client{loop, modules, trusting(authority().authority())};
};

}  // namespace nimbo
