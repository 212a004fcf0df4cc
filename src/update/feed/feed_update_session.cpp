// SPDX-License-Identifier: MIT
#include "update/feed/feed_update_session.h"

#include <chrono>
#include <utility>

#include "update/feed/update_feed_parser.h"
#include "update/feed/update_item.h"

namespace nimbo {
namespace {

constexpr int kOk = 200;
constexpr std::chrono::minutes kLongestDownload{30};

// What the user is told at each step. The last button is the one that ends it. `version` and `installed` are for
// people, such as "1.2".
namespace update_notices {

constexpr const char* kUnreachable = "The update server can’t be reached. Check the internet connection and try again.";
constexpr const char* kNoFeed = "The update server’s answer isn’t a list of updates.";
constexpr const char* kNoPackage = "The update server didn’t send it. Try again later.";
constexpr const char* kWrongPackage = "The downloaded update was damaged or isn’t genuine. Nothing was changed.";

UpdateNotice checking() { return {"Checking for updates…", "", {"Cancel"}}; }

UpdateNotice available(const std::string& version, const std::string& installed) {
  return {
      "Nimbo " + version + " is available",
      "You have " + installed + ". The update is saved in your Downloads folder, where you install it when you like.",
      {"Download", "Later"}};
}

UpdateNotice downloading(const std::string& version) { return {"Downloading Nimbo " + version + "…", "", {"Cancel"}}; }

UpdateNotice ready(const std::string& version) {
  return {"Nimbo " + version + " is ready to install",
          "The package is in your Downloads folder. Open it there to install the update.",
          {"Show in Folder", "Done"}};
}

/// Something has gone wrong, for one of the reasons above or another.
UpdateNotice failedCheck(const std::string& reason) { return {"Couldn’t check for updates", reason, {"OK"}}; }

/// The check has found no update.
UpdateNotice nothing(NoUpdate why, const std::string& installed) {
  if (why == NoUpdate::untrusted) {
    return failedCheck("The update server offers a version that isn’t signed as it should be, so it was left alone.");
  }
  const std::string scope = why == NoUpdate::otherSystem ? " for this system." : ".";
  return {"You’re up to date", "Nimbo " + installed + " is the newest version" + scope, {"OK"}};
}

UpdateNotice failedDownload(const std::string& version, const std::string& reason) {
  return {"Couldn’t download Nimbo " + version, reason, {"OK"}};
}

std::string notSaved(std::error_code why) {
  return "It couldn’t be saved in your Downloads folder: " + why.message() + ".";
}

}  // namespace update_notices

KeptPackage verifyAndSave(const UpdateItem& item, const std::string& package, const PackageSaver& save) {
  if (!describes(item, package)) return tl::unexpected(std::string(update_notices::kWrongPackage));
  return save(packageFileName(item), package).map_error(update_notices::notSaved);
}

void removeUnwanted(const KeptPackage& kept) {
  std::error_code ignored;
  if (kept) std::filesystem::remove(*kept, ignored);
}

}  // namespace

FeedUpdateSession::FeedUpdateSession(UpdateSetup setup, UpdateHost host, UpdateRequest request,
                                     std::function<void()> finished)
    : setup_(std::move(setup)),
      host_(std::move(host)),
      finished_(std::move(finished)),
      silent_(request == UpdateRequest::automatic) {
  if (!silent_) show(update_notices::checking(), &FeedUpdateSession::finish);
  transfer_ = setup_.http.get({.url = setup_.feed.url, .headers = {}, .bodyLimit = kMaximumFeedBytes},
                              [this](const HttpClient::Answer& answer) { feedCame(answer); });
}

FeedUpdateSession::~FeedUpdateSession() {
  if (!silent_) setup_.windows.dismiss();
}

void FeedUpdateSession::feedCame(const HttpClient::Answer& answer) {
  if (!answer && answer.error() == HttpFailure::unreachable) {
    return conclude(update_notices::failedCheck(update_notices::kUnreachable));
  }
  const auto items = answer && answer->status == kOk ? parseUpdateFeed(answer->body) : std::nullopt;
  if (!items) return conclude(update_notices::failedCheck(update_notices::kNoFeed));
  auto update = chooseUpdate(*items, {setup_.installed.version, host_.architecture, host_.system},
                             [this](const UpdateItem& item) { return isSigned(item, setup_.feed.publicKey); });
  if (!update) return conclude(update_notices::nothing(update.error(), setup_.installed.shortVersion));
  item_ = std::move(*update);
  if (silent_) {
    setup_.windows.found(
        "Nimbo " + item_.shortVersion + " is available",
        "You have " + setup_.installed.shortVersion + ". Choose “Check for Updates…” in Nimbo’s menu.");
    return finish();
  }
  show(update_notices::available(item_.shortVersion, setup_.installed.shortVersion), &FeedUpdateSession::download);
}

void FeedUpdateSession::download() {
  show(update_notices::downloading(item_.shortVersion), &FeedUpdateSession::finish);
  transfer_ =
      setup_.http.get({.url = item_.url, .headers = {}, .wholeLimit = kLongestDownload, .bodyLimit = item_.length},
                      [this](HttpClient::Answer answer) { packageCame(std::move(answer)); });
}

void FeedUpdateSession::packageCame(HttpClient::Answer answer) {
  if (!answer && answer.error() == HttpFailure::unreachable) return concludeDownload(update_notices::kUnreachable);
  if (!answer || answer->status != kOk) return concludeDownload(update_notices::kNoPackage);
  keep(std::move(answer->body));
}

// On the work queue, because a large package takes a second to read through and longer to write.
void FeedUpdateSession::keep(std::string package) {
  auto finish = lifetime_.guard([this](const KeptPackage& kept) { packageKept(kept); });
  setup_.queue.async([&loop = setup_.loop, finish, item = item_, save = host_.save,
                      package = std::make_shared<std::string>(std::move(package))] {
    loop.post([finish, kept = verifyAndSave(item, *package, save)] {
      if (!finish(kept)) removeUnwanted(kept);  // cancelled meanwhile
    });
  });
}

void FeedUpdateSession::packageKept(const KeptPackage& kept) {
  if (!kept) return concludeDownload(kept.error());
  file_ = *kept;
  show(update_notices::ready(item_.shortVersion), &FeedUpdateSession::reveal);
}

void FeedUpdateSession::reveal() {
  setup_.workspace.revealFile(file_);
  finish();
}

void FeedUpdateSession::show(const UpdateNotice& notice, Step first) {
  setup_.windows.show(notice, [this, first](std::size_t button) { button == 0 ? (this->*first)() : finish(); });
}

void FeedUpdateSession::conclude(const UpdateNotice& notice) {
  silent_ ? finish() : show(notice, &FeedUpdateSession::finish);
}

void FeedUpdateSession::concludeDownload(const std::string& reason) {
  show(update_notices::failedDownload(item_.shortVersion, reason), &FeedUpdateSession::finish);
}

void FeedUpdateSession::finish() {
  const auto finished = std::move(finished_);
  finished();
}

}  // namespace nimbo
