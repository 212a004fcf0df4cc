// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "usage/codex/codex_credential_file.h"
#include "usage/utc_time.h"

namespace nimbo {
namespace {

const UsageTime kNow = utc(2026, 11, 21, 12);
constexpr const char* kUnreadable = "Sign-in data is unreadable. Sign in again in Codex first.";
constexpr const char* kNoSignIn = "No subscription sign-in found. Sign in with Codex first.";
constexpr const char* kExpired = "Sign-in expired. Open Claude Code to renew it, then refresh.";

std::string errorOf(std::string_view bytes, UsageProvider provider = UsageProvider::codex) {
  const auto credentials = decodeCredentials(Secret(bytes), provider, kNow);
  return credentials ? "(credentials)" : credentials.error().message;
}

std::string claudeFile(const std::string& expiresAt) {
  return R"({"claudeAiOauth":{"accessToken":"secret-c","expiresAt":)" + expiresAt + "}}";
}

TEST(CredentialDecoder, CodexFileGivesTokenAndAccount) {
  const auto credentials = decodeCredentials(
      Secret(
          R"({"OPENAI_API_KEY":null,"tokens":{"id_token":"x","access_token":"secret","account_id":"acc-1"},"last_refresh":"…"})"),
      UsageProvider::codex, kNow);
  ASSERT_TRUE(credentials);
  EXPECT_EQ(credentials->token.view(), "secret");
  EXPECT_EQ(credentials->accountId, "acc-1");
}

TEST(CredentialDecoder, AccountThatIsNoTextIsAbsent) {
  for (const char* const file :
       {R"({"tokens":{"access_token":"secret"}})", R"({"tokens":{"access_token":"secret","account_id":null}})",
        R"({"tokens":{"access_token":"secret","account_id":7}})"}) {
    const auto credentials = decodeCredentials(Secret(file), UsageProvider::codex, kNow);
    ASSERT_TRUE(credentials) << file;
    EXPECT_EQ(credentials->accountId, std::nullopt) << file;
  }
}

TEST(CredentialDecoder, WhatIsNoObjectIsUnreadable) {
  for (const char* const file : {"", "not json", "[]", "null", "\"tokens\"", "{\"tokens\":", "\xFF\xFE{}"}) {
    EXPECT_EQ(errorOf(file), kUnreadable) << file;
  }
}

TEST(CredentialDecoder, TextCutInsideACharacterIsUnreadable) {
  for (const char* const file :
       {"{\"tokens\":{\"access_\xF4o", "{\"a\":\"\xE2\x82", "{\"tokens\":{\"access_token\":\"s\xC3\"}}"}) {
    EXPECT_EQ(errorOf(file), kUnreadable) << file;
  }
}

TEST(CredentialDecoder, FileOfAnApiKeyOnlyHoldsNoSubscription) {
  EXPECT_EQ(errorOf(R"({"OPENAI_API_KEY":"sk-secret"})"), kNoSignIn);
}

TEST(CredentialDecoder, EmptyOrOddTokenIsNoSubscription) {
  for (const char* const file : {R"({"tokens":{}})", R"({"tokens":[]})", R"({"tokens":"secret"})",
                                 R"({"tokens":{"access_token":""}})", R"({"tokens":{"access_token":7}})"}) {
    EXPECT_EQ(errorOf(file), kNoSignIn) << file;
  }
}

TEST(CredentialDecoder, ClaudeFileGivesTokenWithoutAccount) {
  const auto credentials = decodeCredentials(Secret(claudeFile("1795262400001")), UsageProvider::claude, kNow);
  ASSERT_TRUE(credentials);
  EXPECT_EQ(credentials->token.view(), "secret-c");
  EXPECT_EQ(credentials->accountId, std::nullopt);
}

TEST(CredentialDecoder, ClaudeSignInExpiresAtItsInstant) {
  ASSERT_EQ(kNow, UsageTime(std::chrono::milliseconds(1795262400000)));
  EXPECT_EQ(errorOf(claudeFile("1795262400001"), UsageProvider::claude), "(credentials)");
  EXPECT_EQ(errorOf(claudeFile("1795262400000"), UsageProvider::claude), kExpired);
  EXPECT_EQ(errorOf(claudeFile("0"), UsageProvider::claude), kExpired);
}

TEST(CredentialDecoder, ClaudeSignInWithoutExpiryDoesNotExpire) {
  EXPECT_EQ(errorOf(R"({"claudeAiOauth":{"accessToken":"secret"}})", UsageProvider::claude), "(credentials)");
  EXPECT_EQ(errorOf(claudeFile("1e300"), UsageProvider::claude), "(credentials)");
}

TEST(CredentialDecoder, ClaudeErrorsNameClaude) {
  EXPECT_EQ(errorOf("[]", UsageProvider::claude), "Sign-in data is unreadable. Sign in again in Claude first.");
  EXPECT_EQ(errorOf("{}", UsageProvider::claude), "No subscription sign-in found. Sign in with Claude first.");
}

TEST(CredentialDecoder, ShapeOfTheOtherProviderIsNotAccepted) {
  EXPECT_EQ(errorOf(claudeFile("1795262400001"), UsageProvider::codex), kNoSignIn);
  EXPECT_NE(errorOf(R"({"tokens":{"access_token":"secret"}})", UsageProvider::claude), "(credentials)");
}

TEST(CredentialDecoder, TokenNeverAppearsInAnError) {
  for (const char* const file :
       {R"({"tokens":{"access_token":"secret")", R"(["secret"])", R"({"access_token":"secret"})"}) {
    EXPECT_EQ(errorOf(file).find("secret"), std::string::npos) << errorOf(file);
  }
}

}  // namespace
}  // namespace nimbo
