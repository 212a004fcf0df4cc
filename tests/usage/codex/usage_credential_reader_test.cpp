// SPDX-License-Identifier: MIT
#include "usage/codex/usage_credential_reader.h"

#include <gtest/gtest.h>

#include <deque>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/mac_wording.h"
#include "support/fake_main_loop.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Outcome = UsageCredentialReader::Outcome;
using Texts = std::vector<std::string>;

constexpr auto kCodex = UsageProvider::codex;
constexpr auto kClaude = UsageProvider::claude;

class UsageCredentialReaderTest : public ::testing::Test {
 protected:
  UsageCredentialReader::Background background() {
    return [this](std::function<void()> job) { work.push_back(std::move(job)); };
  }

  UsageCredentialReader::Reader giving(const Result<std::string, UsageError>& token) {
    return [this, token](UsageProvider provider, bool allowPrompt) -> Outcome {
      prompts.push_back(std::string(rawValue(provider)) + (allowPrompt ? " may ask" : " may not ask"));
      return token.map([](const std::string& text) { return UsageCredentials{Secret(text), "account"}; });
    };
  }

  /// What `done` was told, as text.
  std::function<void(Outcome)> record() {
    return [this](const Outcome& outcome) {
      told.push_back(outcome ? std::string(outcome->token.view()) : outcome.error().message);
    };
  }

  Subscription read(UsageProvider provider, const std::string& token, bool allowPrompt = false) {
    return reader->read(provider, allowPrompt, std::nullopt, giving(token), record());
  }

  /// The reader that was called first returns.
  void returnOne() {
    const auto job = std::move(work.front());
    work.pop_front();
    job();
  }

  FakeMainLoop loop;
  std::deque<std::function<void()>> work;
  Texts prompts;
  Texts told;
  std::optional<UsageCredentialReader> reader{std::in_place, loop, background(), macWording()};
};

TEST_F(UsageCredentialReaderTest, CredentialsComeLaterFromTheLoop) {
  const auto reading = read(kCodex, "token");
  returnOne();
  EXPECT_EQ(told, Texts{});
  loop.runPosted();
  EXPECT_EQ(told, Texts{"token"});
  EXPECT_EQ(prompts, Texts{"codex may not ask"});
  EXPECT_TRUE(loop.repeatingTimers().empty());
  loop.advance(2min);
  EXPECT_EQ(told.size(), 1U);
}

TEST_F(UsageCredentialReaderTest, AccountAndErrorArePassedOn) {
  std::optional<std::string> account;
  const auto good = reader->read(kCodex, true, std::nullopt, giving("token"),
                                 [&account](const Outcome& outcome) { account = outcome.value().accountId; });
  const auto bad = reader->read(kClaude, true, std::nullopt, giving(tl::unexpected(UsageError{"no"})), record());
  returnOne();
  returnOne();
  loop.runPosted();
  EXPECT_EQ(account, "account");
  EXPECT_EQ(told, Texts{"no"});
  EXPECT_EQ(prompts, (Texts{"codex may ask", "claude may ask"}));
}

TEST_F(UsageCredentialReaderTest, SecondReadWhileTheFirstHangsFailsAtOnceAndStartsNone) {
  const auto first = read(kCodex, "first");
  const auto second = read(kCodex, "second");
  EXPECT_EQ(told, Texts{});
  loop.runPosted();
  EXPECT_EQ(told, Texts{"A sign-in read is still waiting on Keychain. Check for a macOS prompt, then refresh."});
  EXPECT_EQ(work.size(), 1U);
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told.back(), "first");
}

TEST_F(UsageCredentialReaderTest, OtherProviderIsNotAffectedByOneThatHangs) {
  const auto hanging = read(kCodex, "codex");
  const auto other = read(kClaude, "claude");
  ASSERT_EQ(work.size(), 2U);
  work.back()();
  loop.runPosted();
  EXPECT_EQ(told, Texts{"claude"});
}

TEST_F(UsageCredentialReaderTest, TimeLimitIsTenSecondsWhereNobodyIsAsked) {
  const auto reading = read(kCodex, "token");
  loop.advance(9s);
  EXPECT_EQ(told, Texts{});
  loop.advance(1s);
  EXPECT_EQ(told, Texts{"Sign-in access timed out. Check Keychain access and refresh."});
  EXPECT_TRUE(loop.repeatingTimers().empty());
}

TEST_F(UsageCredentialReaderTest, TimeLimitIsAMinuteWhereTheUserMayBeAsked) {
  const auto reading = read(kCodex, "token", true);
  loop.advance(59s);
  EXPECT_EQ(told, Texts{});
  loop.advance(1s);
  EXPECT_EQ(told, Texts{macWording().signInReadTimedOut});
}

TEST_F(UsageCredentialReaderTest, TimeLimitMayBeGiven) {
  const auto reading = reader->read(kCodex, true, 3s, giving("token"), record());
  loop.advance(3s);
  EXPECT_EQ(told, Texts{macWording().signInReadTimedOut});
}

TEST_F(UsageCredentialReaderTest, LateReaderLeavesNoTraceButFreesItsPlace) {
  const auto late = read(kCodex, "late");
  loop.advance(10s);
  const auto refused = read(kCodex, "refused");
  loop.runPosted();
  EXPECT_EQ(told, (Texts{macWording().signInReadTimedOut, macWording().signInReadStillWaiting}));
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told.size(), 2U);
  const auto again = read(kCodex, "again");
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told.back(), "again");
}

TEST_F(UsageCredentialReaderTest, PlaceIsFreeAsSoonAsTheReaderReturns) {
  const auto first = read(kCodex, "first");
  returnOne();
  const auto second = read(kCodex, "second");
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told, (Texts{"first", "second"}));
}

TEST_F(UsageCredentialReaderTest, DroppedSubscriptionSilencesEverything) {
  auto reading = read(kCodex, "token");
  auto refused = read(kCodex, "second");
  reading.reset();
  refused.reset();
  EXPECT_TRUE(loop.repeatingTimers().empty());
  loop.advance(1min);
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told, Texts{});
  auto posted = read(kCodex, "posted");
  returnOne();
  posted.reset();
  loop.runPosted();
  EXPECT_EQ(told, Texts{});
}

TEST_F(UsageCredentialReaderTest, SubscriptionMayEndAndANewReadBeginInTheCallback) {
  Subscription reading;
  Subscription next;
  reading = reader->read(kCodex, false, std::nullopt, giving("token"), [&](const Outcome& outcome) {
    told.emplace_back(outcome->token.view());
    reading.reset();
    next = read(kCodex, "next");
  });
  returnOne();
  loop.runPosted();
  returnOne();
  loop.runPosted();
  EXPECT_EQ(told, (Texts{"token", "next"}));
}

TEST_F(UsageCredentialReaderTest, ReaderThatReturnsAfterEverythingElseHasGoneIsHarmless) {
  std::optional<FakeMainLoop> brief(std::in_place);
  std::optional<UsageCredentialReader> gone(std::in_place, *brief, background(), macWording());
  auto reading = gone->read(kCodex, false, std::nullopt, giving("token"), record());
  reading.reset();
  gone.reset();
  brief.reset();
  returnOne();
  EXPECT_EQ(told, Texts{});
}

TEST_F(UsageCredentialReaderTest, ReadersRunOnOtherThreadsWhileTheCallerGoesOn) {
  std::vector<std::thread> threads;
  std::promise<void> release;
  UsageCredentialReader real(
      loop, [&threads](std::function<void()> job) { threads.emplace_back(std::move(job)); }, macWording());
  const auto blocked = real.read(
      kCodex, false, std::nullopt,
      [&release](UsageProvider, bool) -> Outcome {
        release.get_future().wait();
        return UsageCredentials{Secret("from a thread")};
      },
      record());
  const auto refused = real.read(kCodex, false, std::nullopt, giving("no"), record());
  loop.runPosted();
  EXPECT_EQ(told, Texts{macWording().signInReadStillWaiting});
  release.set_value();
  for (std::thread& thread : threads) thread.join();
  loop.runPosted();
  EXPECT_EQ(told.back(), "from a thread");
}

}  // namespace
}  // namespace nimbo
