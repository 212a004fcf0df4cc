// SPDX-License-Identifier: MIT
#include "usage/codex/codex_credential_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/files/regular_file.h"
#include "support/fake_clock.h"
#include "support/fake_secret_files.h"
#include "support/services/temporary_tree.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr const char* kNoFile = "No Codex auth.json found. Sign in with Codex CLI using file credential storage.";
constexpr const char* kSignIn =
    R"({"OPENAI_API_KEY": null, "tokens": {"id_token": "i", "access_token": "secret", "refresh_token": "r",
        "account_id": "account"}, "last_refresh": "2026-03-01T08:00:00Z"})";

/// The token, or the error's message.
std::string textOf(const UsageCredentialReader::Outcome& outcome) {
  return outcome ? std::string(outcome->token.view()) : outcome.error().message;
}

TEST(CodexCredentialFile, StandsBelowTheHomeFolderUnlessTheEnvironmentNamesAnother) {
  EXPECT_EQ(codexCredentialFile("", "/home/ada"), "/home/ada/.codex/auth.json");
  EXPECT_EQ(codexCredentialFile("/srv/codex", "/home/ada"), "/srv/codex/auth.json");
  EXPECT_EQ(codexCredentialFile("/srv/codex/", "/home/ada"), "/srv/codex/auth.json");
}

class CodexCredentialReaderTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string read(const std::string& text, UsageProvider provider = UsageProvider::codex) {
    files.texts["/codex/auth.json"] = text;
    return textOf(codexCredentialReader("/codex/auth.json", files, clock)(provider, false));
  }

  FakeSecretFiles files;
  FakeClock clock;
};

TEST_F(CodexCredentialReaderTest, SignInIsReadAnewEachTime) {
  files.texts["/codex/auth.json"] = kSignIn;
  const auto reader = codexCredentialReader("/codex/auth.json", files, clock);
  const auto first = reader(UsageProvider::codex, true);
  ASSERT_TRUE(first);
  EXPECT_EQ(first->token.view(), "secret");
  EXPECT_EQ(first->accountId, "account");
  files.texts["/codex/auth.json"] = R"({"tokens": {"access_token": "other"}})";
  EXPECT_EQ(textOf(reader(UsageProvider::codex, true)), "other");
  EXPECT_EQ(files.reads.size(), 2U);
}

TEST_F(CodexCredentialReaderTest, ClaudeFailsWithoutLookingAtAnyFile) {
  EXPECT_EQ(read(kSignIn, UsageProvider::claude), "Claude usage is read through Claude Code or Claude Desktop.");
  EXPECT_TRUE(files.reads.empty());
}

TEST_F(CodexCredentialReaderTest, MissingOrHugeFileAsksForASignIn) {
  EXPECT_EQ(textOf(codexCredentialReader("/absent", files, clock)(UsageProvider::codex, false)), kNoFile);
  EXPECT_EQ(read(std::string((1U << 20) + 1, ' ')), kNoFile);
}

TEST_F(CodexCredentialReaderTest, FileThatIsNoSignInIsToldApart) {
  EXPECT_EQ(read("[]"), "Sign-in data is unreadable. Sign in again in Codex first.");
  EXPECT_EQ(read(R"({"OPENAI_API_KEY": "sk-1"})"), "No subscription sign-in found. Sign in with Codex first.");
  EXPECT_EQ(read(R"({"tokens": {"access_token": ""}})"), "No subscription sign-in found. Sign in with Codex first.");
}

TEST_F(CodexCredentialReaderTest, NothingOfTheFileAppearsInAMessage) {
  for (const char* const text : {R"({"tokens": {"access_token": "secret")", R"(["secret"])", R"("secret)",
                                 R"({"tokens": "secret"})", R"({"tokens": {"access_token": ["secret"]}})"}) {
    EXPECT_EQ(read(text).find("secret"), std::string::npos) << text;
  }
}

TEST(CodexCredentialReader, OnARealFileSystemOddFilesNeitherCountNorHoldItUp) {
  const TemporaryTree tree;
  const PlainSecretFiles files{};
  const FakeClock clock;
  const auto read = [&](const std::filesystem::path& folder) {
    return textOf(
        codexCredentialReader(codexCredentialFile(folder.string(), "/"), files, clock)(UsageProvider::codex, false));
  };
  tree.write("good/auth.json", kSignIn);
  EXPECT_EQ(read(tree.path() / "good"), "secret");
  EXPECT_EQ(read(tree.path() / "absent"), kNoFile);
  std::filesystem::create_directories(tree.path() / "folder" / "auth.json");
  EXPECT_EQ(read(tree.path() / "folder"), kNoFile);
  std::filesystem::create_directory(tree.path() / "pipe");
  ASSERT_EQ(::mkfifo((tree.path() / "pipe" / "auth.json").c_str(), 0600), 0);
  EXPECT_EQ(read(tree.path() / "pipe"), kNoFile);
  std::filesystem::create_directory(tree.path() / "device");
  std::filesystem::create_symlink("/dev/zero", tree.path() / "device" / "auth.json");
  EXPECT_EQ(read(tree.path() / "device"), kNoFile);
  tree.write("huge/auth.json", "");
  std::filesystem::resize_file(tree.path() / "huge" / "auth.json", 1ULL << 40);
  EXPECT_EQ(read(tree.path() / "huge"), kNoFile);
}

}  // namespace
}  // namespace nimbo
