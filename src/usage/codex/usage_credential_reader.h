// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/result.h"
#include "base/secret.h"
#include "base/subscription.h"
#include "platform/main_loop.h"
#include "platform/wording.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

/// A sign-in. Never encoded, logged or shown.
struct UsageCredentials {
  Secret token;
  std::optional<std::string> accountId{};
};

/// Reads sign-ins in the background, never two of a provider at a time: a read that hangs neither
/// holds up a refresh nor piles up. Main thread only.
class UsageCredentialReader {
 public:
  using Outcome = Result<UsageCredentials, UsageError>;
  /// Blocks for as long as it takes; `allowPrompt` says whether the system may ask the user.
  using Reader = std::function<Outcome(UsageProvider provider, bool allowPrompt)>;
  /// Runs blocking work on a thread of low priority, without waiting for work given before.
  using Background = std::function<void(std::function<void()> work)>;

  /// `loop` and `wording` outlive it; work that still hangs in the background may outlive both.
  UsageCredentialReader(MainLoop& loop, Background background, const Wording& wording);
  ~UsageCredentialReader();
  UsageCredentialReader(const UsageCredentialReader&) = delete;
  UsageCredentialReader& operator=(const UsageCredentialReader&) = delete;

  /// `done` is called once, later, from the main loop; dropping the subscription silences it. The
  /// time limit is 60 s where the user may have to answer, else 10 s, unless one is given.
  [[nodiscard]] Subscription read(UsageProvider provider, bool allowPrompt,
                                  std::optional<std::chrono::seconds> timeoutInterval, Reader reader,
                                  std::function<void(Outcome)> done);

 private:
  struct Reads;

  MainLoop& loop_;
  const Background background_;
  const Wording& wording_;
  const std::shared_ptr<Reads> reads_;
};

}  // namespace nimbo
