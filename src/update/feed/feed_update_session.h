// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "base/lifetime.h"
#include "base/result.h"
#include "base/subscription.h"
#include "platform/update_session.h"
#include "update/feed/update_choice.h"
#include "update/feed/update_item.h"

namespace nimbo {

/// Saves a whole package where the user looks for downloads, under that name or one like it; returns
/// where. Called on the work queue.
using PackageSaver =
    std::function<Result<std::filesystem::path, std::error_code>(const std::string& name, std::string_view package)>;

/// Where a package has been saved, or why not, in words for the user.
using KeptPackage = Result<std::filesystem::path, std::string>;

/// What is particular to the system that updates are for.
struct UpdateHost {
  std::string architecture;  ///< Debian's name
  std::string system;        ///< version of the C library
  PackageSaver save;
};

/// Reads the feed, offers the update, downloads, verifies and saves its package. Only what has been
/// verified is ever written to a file.
class FeedUpdateSession final : public UpdateSession {
 public:
  FeedUpdateSession(UpdateSetup setup, UpdateHost host, UpdateRequest request, std::function<void()> finished);
  /// Takes its notice away.
  ~FeedUpdateSession() override;
  FeedUpdateSession(const FeedUpdateSession&) = delete;
  FeedUpdateSession& operator=(const FeedUpdateSession&) = delete;

  [[nodiscard]] bool silent() const override { return silent_; }

 private:
  using Step = void (FeedUpdateSession::*)();

  void feedCame(const HttpClient::Answer& answer);
  void download();
  void packageCame(HttpClient::Answer answer);
  void keep(std::string package);
  void packageKept(const KeptPackage& kept);
  void reveal();

  /// `first` follows when the first button is pressed; any other one ends the session.
  void show(const UpdateNotice& notice, Step first);
  /// The last notice, shown unless nobody has seen one so far.
  void conclude(const UpdateNotice& notice);
  void concludeDownload(const std::string& reason);
  void finish();

  const UpdateSetup setup_;
  const UpdateHost host_;
  std::function<void()> finished_;
  const bool silent_;
  UpdateItem item_;             // the one that is offered
  std::filesystem::path file_;  // its package, once saved
  Subscription transfer_;
  Lifetime lifetime_;  // for what comes back from the work queue
};

}  // namespace nimbo
