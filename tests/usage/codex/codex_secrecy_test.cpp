// SPDX-License-Identifier: MIT
// The whole way of the user's sign-in, from its file to the service, with everything real.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <systemd/sd-event.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <thread>

#include "platform/linux/http/module_http_client.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/mac_wording.h"
#include "platform/posix/files/regular_file.h"
#include "platform/posix/loop/dl_module_loader.h"
#include "support/fake_clock.h"
#include "support/fake_dates.h"
#include "support/fake_http_client.h"
#include "support/fake_main_loop.h"
#include "support/services/https_server.h"
#include "support/services/own_memory.h"
#include "support/services/sanitizers.h"
#include "usage/codex/codex_credential_file.h"
#include "usage/codex/codex_usage_client.h"

namespace nimbo {
namespace {

constexpr std::size_t kTokenSize = 1500;
const HiddenText kToken(kTokenSize);
const HiddenText kOther(kTokenSize + 500);  // for a test that must not see what another leaves
constexpr const char* kAnswer =
    "HTTP/1.1 200 OK\r\nContent-Length: 54\r\n\r\n"
    R"({"rate_limit": {"primary_window": {"used_percent":7}}})";

/// By a child, so that what is in the file was never in this process.
void writeSignIn(const TemporaryTree& tree) {
  const pid_t child = ::fork();
  if (child == 0) {
    tree.write("auth.json", R"({"tokens": {"access_token": ")" + kToken.reveal() + R"(", "account_id": "account"}})");
    ::_exit(0);
  }
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(CodexSecrecy, FilesTextDoesNotOutliveItsDecoding) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  const TemporaryTree tree;
  writeSignIn(tree);
  // As it stands in the file only.
  const HiddenText text(kTokenSize, "\", \"account_id\"");
  const PlainSecretFiles files{};
  const FakeClock clock;
  auto bytes = files.read(tree.path() / "auth.json", 10'000);
  ASSERT_TRUE(bytes);
  EXPECT_EQ(OwnMemory::find(text).size(), 1U);
  *bytes = {};
  ASSERT_TRUE(codexCredentialReader(tree.path() / "auth.json", files, clock)(UsageProvider::codex, false));
  EXPECT_TRUE(OwnMemory::find(text).empty());
}

TEST(CodexSecrecy, DecodedTokenIsTheOnlyCopyOfIt) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  const TemporaryTree tree;
  const HiddenText token(kTokenSize + 900);  // longer than all others
  if (const pid_t child = ::fork(); child == 0) {
    tree.write("auth.json", R"({"tokens": {"access_token": ")" + token.reveal() + R"("}})");
    ::_exit(0);
  } else {
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  }
  const PlainSecretFiles files{};
  const FakeClock clock;
  auto credentials = codexCredentialReader(tree.path() / "auth.json", files, clock)(UsageProvider::codex, false);
  ASSERT_TRUE(credentials);
  EXPECT_EQ(OwnMemory::find(token).size(), 1U);
  credentials->token = {};
  EXPECT_TRUE(OwnMemory::find(token).empty());
}

TEST(CodexSecrecy, OnlyTheRequestHoldsTheTokenWhileItIsUnderWay) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  FakeMainLoop loop;
  FakeHttpClient http;
  const FakeClock clock;
  const FakeDates dates{};
  UsageCredentialReader credentials(
      loop, [](const std::function<void()>& work) { work(); }, macWording());
  const CodexUsageClient client(
      {credentials, [](UsageProvider, bool) { return UsageCredentials{kOther.secret()}; }, http, clock, dates});
  const auto reading = client.read(UsageRequest::automatic, [](const UsageOutcome&) {});
  EXPECT_EQ(OwnMemory::find(kOther).size(), 1U) << "on its way to the main thread";
  loop.runPosted();
  ASSERT_EQ(http.requests.size(), 1U);
  EXPECT_EQ(OwnMemory::find(kOther).size(), 1U);
  http.requests.clear();
  EXPECT_TRUE(OwnMemory::find(kOther).empty());
}

TEST(CodexSecrecy, TokenThatNobodyWaitsForAnyMoreIsWiped) {
  if (kSanitized) GTEST_SKIP() << "their memory cannot be searched in reasonable time";
  FakeMainLoop loop;
  std::function<void()> work;
  UsageCredentialReader credentials(
      loop, [&work](std::function<void()> given) { work = std::move(given); }, macWording());
  const HiddenText dropped(kTokenSize + 1500);
  const HiddenText late(kTokenSize + 2000);
  const auto read = [&credentials](const HiddenText& token) {
    return credentials.read(
        UsageProvider::codex, false, std::chrono::seconds(10),
        [&token](UsageProvider, bool) { return UsageCredentials{token.secret()}; },
        [](const UsageCredentialReader::Outcome&) {});
  };

  auto reading = read(dropped);
  work();
  EXPECT_EQ(OwnMemory::find(dropped).size(), 1U);
  reading.reset();
  loop.runPosted();
  EXPECT_TRUE(OwnMemory::find(dropped).empty());

  reading = read(late);
  loop.advance(std::chrono::seconds(10));
  work();
  EXPECT_EQ(OwnMemory::find(late).size(), 1U);
  loop.runPosted();
  EXPECT_TRUE(OwnMemory::find(late).empty());
}

TEST(CodexSecrecy, SignInOfTheFileReachesTheServiceAndNothingIsSaidOfIt) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const TemporaryTree tree;
  writeSignIn(tree);
  const TestAuthority authority;
  HttpsServer server(authority);
  const std::string host = server.hostAnswering("/backend-api/wham/usage", kAnswer);
  SdEventMainLoop loop;
  DlModuleLoader modules(NIMBO_MODULE_FOLDER);
  ModuleHttpClient http(loop, modules,
                        {.userAgent = "Nimbo", .certificateFile = authority.authority(), .certificateFolder = {}});
  const PlainSecretFiles files{};
  const FakeClock clock;
  const FakeDates dates{};
  std::vector<std::thread> threads;
  UsageCredentialReader credentials(
      loop, [&threads](std::function<void()> work) { threads.emplace_back(std::move(work)); }, macWording());
  const CodexUsageClient client(
      {credentials, codexCredentialReader(tree.path() / "auth.json", files, clock), http, clock, dates}, host);
  std::optional<UsageOutcome> outcome;
  const auto reading =
      client.read(UsageRequest::automatic, [&outcome](UsageOutcome given) { outcome = std::move(given); });
  while (!outcome) sd_event_run(loop.event(), 20'000'000);
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(*outcome) << outcome->error().message;
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(server.request(1).find("Bearer " + kToken.reveal()), std::string::npos);
}

}  // namespace
}  // namespace nimbo
