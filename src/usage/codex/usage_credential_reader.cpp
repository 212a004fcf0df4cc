// SPDX-License-Identifier: MIT
#include "usage/codex/usage_credential_reader.h"

#include <mutex>
#include <set>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::seconds;

// A time limit may pass a little late, so that the kernel can join wake-ups.
constexpr std::chrono::milliseconds kLeeway{250};

seconds defaultTimeout(bool allowPrompt) { return allowPrompt ? seconds{60} : seconds{10}; }

/// One caller who waits, on the main thread. The reader returning and the time limit passing both come
/// here, and only the first of them finds the continuation.
struct Completion {
  std::function<void(UsageCredentialReader::Outcome)> continuation;
  Subscription timeLimit;

  /// Leaves the outcome as it is when nobody waits for it any more.
  void resume(UsageCredentialReader::Outcome&& outcome) {
    timeLimit.reset();
    if (const auto waiting = std::exchange(continuation, nullptr)) waiting(std::move(outcome));
  }
};

}  // namespace

/// What the work in the background shares with the main thread.
struct UsageCredentialReader::Reads {
  std::mutex lock;
  std::set<UsageProvider> busy;  ///< providers whose reader has not returned yet
  MainLoop* loop = nullptr;      ///< null once the UsageCredentialReader has gone

  [[nodiscard]] bool begin(UsageProvider provider) {
    const std::scoped_lock guard(lock);
    return busy.insert(provider).second;
  }

  void end(UsageProvider provider, std::function<void()> resume) {
    const std::scoped_lock guard(lock);
    busy.erase(provider);
    if (loop != nullptr) loop->post(std::move(resume));
  }
};

UsageCredentialReader::UsageCredentialReader(MainLoop& loop, Background background, const Wording& wording)
    : loop_(loop), background_(std::move(background)), wording_(wording), reads_(std::make_shared<Reads>()) {
  reads_->loop = &loop;
}

UsageCredentialReader::~UsageCredentialReader() {
  const std::scoped_lock guard(reads_->lock);
  reads_->loop = nullptr;
}

Subscription UsageCredentialReader::read(UsageProvider provider, bool allowPrompt,
                                         std::optional<seconds> timeoutInterval, Reader reader,
                                         std::function<void(Outcome)> done) {
  // Only the subscription owns it, so that dropping that is the end of it, and on this thread.
  const auto completion = std::make_shared<Completion>(Completion{std::move(done), {}});
  const auto resume = [weak = std::weak_ptr(completion)](Outcome&& outcome) {
    if (const auto waiting = weak.lock()) waiting->resume(std::move(outcome));
  };
  if (!reads_->begin(provider)) {
    loop_.post([resume, &words = wording_] { resume(tl::unexpected(UsageError{words.signInReadStillWaiting})); });
    return Subscription([completion] {});
  }
  completion->timeLimit =
      loop_.every(timeoutInterval.value_or(defaultTimeout(allowPrompt)), kLeeway,
                  [resume, &words = wording_] { resume(tl::unexpected(UsageError{words.signInReadTimedOut})); });
  background_([reads = reads_, provider, allowPrompt, reader = std::move(reader), resume] {
    // Shared, because a posted task is copied and a token is not.
    const auto outcome = std::make_shared<Outcome>(reader(provider, allowPrompt));
    reads->end(provider, [resume, outcome] { resume(std::move(*outcome)); });
  });
  return Subscription([completion] {});
}

}  // namespace nimbo
