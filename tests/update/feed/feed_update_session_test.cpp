// SPDX-License-Identifier: MIT
#include "update/feed/feed_update_session.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/fake_http_client.h"
#include "support/fake_main_loop.h"
#include "support/fake_update_windows.h"
#include "support/fake_work_queue.h"
#include "support/fake_workspace.h"
#include "support/services/temporary_tree.h"
#include "update/feed/signed_feed.h"

namespace nimbo {
namespace {

constexpr const char* kFeedUrl = "https://updates.test/feed.xml";
const std::string kPackage = "the package";

class FeedUpdateSessionTest : public ::testing::Test {
 protected:
  void begin(UpdateRequest request = UpdateRequest::user) {
    const PackageSaver save = [this](const std::string& name,
                                     std::string_view package) -> Result<std::filesystem::path, std::error_code> {
      if (saveError) return tl::unexpected(saveError);
      return downloads.write(name, package);
    };
    session = std::make_unique<FeedUpdateSession>(
        UpdateSetup{loop, http, queue, workspace, windows, {kFeedUrl, publisher.publicKey()}, {"1.0", "One"}},
        UpdateHost{"amd64", "2.36", save}, request, [this] {
          ++finished;
          session.reset();
        });
  }

  [[nodiscard]] std::string goodFeed() const { return feedOf({publisher.sign(itemFor(kPackage))}); }

  /// Everything up to the answer with the package.
  void beginDownload() {
    begin();
    ASSERT_TRUE(http.answer(200, goodFeed()));
    ASSERT_TRUE(windows.press("Download"));
  }

  void work() {
    ASSERT_TRUE(queue.runOne());
    loop.runPosted();
  }

  [[nodiscard]] bool nothingSaved() const { return std::filesystem::is_empty(downloads.path()); }

  Publisher publisher;
  FakeMainLoop loop;
  FakeHttpClient http;
  FakeWorkQueue queue;
  FakeWorkspace workspace;
  FakeUpdateWindows windows;
  TemporaryTree downloads;
  std::error_code saveError;
  int finished = 0;
  std::unique_ptr<FeedUpdateSession> session;
};

TEST_F(FeedUpdateSessionTest, UserSeesThatItChecksAndTheFeedIsAskedForNothingElse) {
  begin();
  EXPECT_EQ(windows.notices, (std::vector<UpdateNotice>{{"Checking for updates…", "", {"Cancel"}}}));
  ASSERT_EQ(http.requests.size(), 1U);
  EXPECT_EQ(http.requests[0].url, kFeedUrl);
  EXPECT_TRUE(http.requests[0].headers.empty());
  EXPECT_EQ(http.requests[0].bodyLimit, 1U << 20);
  EXPECT_FALSE(session->silent());
}

TEST_F(FeedUpdateSessionTest, CancelEndsTheCheck) {
  begin();
  ASSERT_TRUE(windows.press("Cancel"));
  EXPECT_EQ(http.cancelled(), 1U);
  EXPECT_EQ(finished, 1);
}

TEST_F(FeedUpdateSessionTest, WithoutAnUpdateTheUserIsToldSo) {
  begin();
  http.answer(200, feedAround(""));
  EXPECT_EQ(windows.notices.back(), (UpdateNotice{"You’re up to date", "Nimbo One is the newest version.", {"OK"}}));
  EXPECT_EQ(finished, 0);
  ASSERT_TRUE(windows.press("OK"));
  EXPECT_EQ(finished, 1);
}

TEST_F(FeedUpdateSessionTest, UpdateForOtherSystemsIsNoneForThisOne) {
  auto item = itemFor(kPackage);
  item.architecture = "arm64";
  begin();
  http.answer(200, feedOf({publisher.sign(item)}));
  EXPECT_EQ(windows.title(), "You’re up to date");
  EXPECT_EQ(windows.text(), "Nimbo One is the newest version for this system.");
}

TEST_F(FeedUpdateSessionTest, UpdateOfSomebodyElseIsNotOfferedAndNotPassedOverInSilence) {
  begin();
  http.answer(200, feedOf({Publisher().sign(itemFor(kPackage))}));
  EXPECT_EQ(windows.title(), "Couldn’t check for updates");
  EXPECT_EQ(windows.text(),
            "The update server offers a version that isn’t signed as it should be, so it was left alone.");
}

TEST_F(FeedUpdateSessionTest, ServerThatIsNotThereIsToldApartFromOneThatAnswersNonsense) {
  begin();
  http.fail(HttpFailure::unreachable);
  EXPECT_EQ(windows.title(), "Couldn’t check for updates");
  EXPECT_EQ(windows.text(), "The update server can’t be reached. Check the internet connection and try again.");
  ASSERT_TRUE(windows.press("OK"));
  EXPECT_EQ(finished, 1);
  for (const auto& answer : std::vector<HttpClient::Answer>{
           tl::unexpected(HttpFailure::notHttp), HttpResponse{404, {}, goodFeed()}, HttpResponse{301, {}, goodFeed()},
           HttpResponse{204, {}, ""}, HttpResponse{200, {}, ""}, HttpResponse{200, {}, "<html/>"}}) {
    begin();
    ASSERT_TRUE(http.answer(answer));
    EXPECT_EQ(windows.text(), "The update server’s answer isn’t a list of updates.");
    ASSERT_TRUE(windows.press("OK"));
  }
}

TEST_F(FeedUpdateSessionTest, AutomaticCheckTellsOnlyOfAnUpdateAndWithoutAWindow) {
  for (const auto& answer :
       std::vector<HttpClient::Answer>{tl::unexpected(HttpFailure::unreachable), HttpResponse{200, {}, "nonsense"},
                                       HttpResponse{200, {}, feedAround("")},
                                       HttpResponse{200, {}, feedOf({Publisher().sign(itemFor(kPackage))})}}) {
    finished = 0;
    begin(UpdateRequest::automatic);
    EXPECT_TRUE(session->silent());
    ASSERT_TRUE(http.answer(answer));
    EXPECT_EQ(finished, 1);
    EXPECT_TRUE(windows.updatesFound.empty());
  }
  begin(UpdateRequest::automatic);
  ASSERT_TRUE(http.answer(200, goodFeed()));
  EXPECT_EQ(finished, 2);
  ASSERT_EQ(windows.updatesFound.size(), 1U);
  EXPECT_EQ(windows.updatesFound[0].first, "Nimbo 1.2 is available");
  EXPECT_EQ(windows.updatesFound[0].second, "You have One. Choose “Check for Updates…” in Nimbo’s menu.");
  EXPECT_TRUE(windows.notices.empty());
}

TEST_F(FeedUpdateSessionTest, UpdateIsOfferedAndNothingDownloadedUnasked) {
  begin();
  http.answer(200, goodFeed());
  EXPECT_EQ(windows.notices.back(),
            (UpdateNotice{"Nimbo 1.2 is available",
                          "You have One. The update is saved in your Downloads folder, where you install it when you "
                          "like.",
                          {"Download", "Later"}}));
  EXPECT_EQ(http.requests.size(), 1U);
  ASSERT_TRUE(windows.press("Later"));
  EXPECT_EQ(http.requests.size(), 1U);
  EXPECT_EQ(finished, 1);
}

TEST_F(FeedUpdateSessionTest, PackageIsFetchedFromWhereTheItemSaysAndNoLongerThanItSays) {
  beginDownload();
  EXPECT_EQ(windows.notices.back(), (UpdateNotice{"Downloading Nimbo 1.2…", "", {"Cancel"}}));
  ASSERT_EQ(http.requests.size(), 2U);
  EXPECT_EQ(http.requests[1].url, "https://updates.test/nimbo_1.2_amd64.deb");
  EXPECT_EQ(http.requests[1].bodyLimit, kPackage.size());
  EXPECT_TRUE(http.requests[1].headers.empty());
  EXPECT_GT(http.requests[1].wholeLimit, std::chrono::minutes(10)) << "slow lines exist";
}

TEST_F(FeedUpdateSessionTest, GenuinePackageIsSavedUnderItsName) {
  beginDownload();
  http.answer(200, kPackage);
  EXPECT_TRUE(nothingSaved()) << "that is the work queue's";
  EXPECT_EQ(windows.title(), "Downloading Nimbo 1.2…");
  work();
  EXPECT_EQ(downloads.read("nimbo_1.2_amd64.deb"), kPackage);
  EXPECT_EQ(windows.notices.back(),
            (UpdateNotice{"Nimbo 1.2 is ready to install",
                          "The package is in your Downloads folder. Open it there to install the update.",
                          {"Show in Folder", "Done"}}));
  ASSERT_TRUE(windows.press("Done"));
  EXPECT_EQ(finished, 1);
  EXPECT_TRUE(workspace.filesRevealed.empty());
}

TEST_F(FeedUpdateSessionTest, FolderIsShownWhenAskedFor) {
  beginDownload();
  http.answer(200, kPackage);
  work();
  ASSERT_TRUE(windows.press("Show in Folder"));
  EXPECT_EQ(workspace.filesRevealed, std::vector{downloads.path() / "nimbo_1.2_amd64.deb"});
  EXPECT_EQ(finished, 1);
}

TEST_F(FeedUpdateSessionTest, AnythingButThePromisedPackageIsNeverSaved) {
  for (const std::string& body : {std::string(), kPackage.substr(1), kPackage + "!", std::string("the Package")}) {
    beginDownload();
    http.answer(200, body);
    work();
    EXPECT_TRUE(nothingSaved()) << body;
    EXPECT_EQ(windows.title(), "Couldn’t download Nimbo 1.2");
    EXPECT_EQ(windows.text(), "The downloaded update was damaged or isn’t genuine. Nothing was changed.");
    ASSERT_TRUE(windows.press("OK"));
  }
}

TEST_F(FeedUpdateSessionTest, PackageThatDoesNotComeIsTold) {
  beginDownload();
  http.fail(HttpFailure::unreachable);
  EXPECT_EQ(windows.title(), "Couldn’t download Nimbo 1.2");
  EXPECT_EQ(windows.text(), "The update server can’t be reached. Check the internet connection and try again.");
  ASSERT_TRUE(windows.press("OK"));
  for (const int status : {404, 302, 206, 503}) {
    beginDownload();
    http.answer(status, kPackage);
    EXPECT_EQ(windows.text(), "The update server didn’t send it. Try again later.") << status;
    EXPECT_EQ(queue.waiting(), 0U);
    ASSERT_TRUE(windows.press("OK"));
  }
  EXPECT_TRUE(nothingSaved());
}

TEST_F(FeedUpdateSessionTest, PackageThatCannotBeSavedIsToldWithTheReason) {
  saveError = std::make_error_code(std::errc::no_space_on_device);
  beginDownload();
  http.answer(200, kPackage);
  work();
  EXPECT_EQ(windows.text(), "It couldn’t be saved in your Downloads folder: " + saveError.message() + ".");
  ASSERT_TRUE(windows.press("OK"));
  EXPECT_EQ(finished, 1);
}

TEST_F(FeedUpdateSessionTest, CancelledDownloadLeavesNothing) {
  beginDownload();
  ASSERT_TRUE(windows.press("Cancel"));
  EXPECT_EQ(http.cancelled(), 1U);
  EXPECT_EQ(finished, 1);
  EXPECT_TRUE(nothingSaved());
}

TEST_F(FeedUpdateSessionTest, CancelledWhileItIsSavedThePackageIsRemovedAgain) {
  beginDownload();
  http.answer(200, kPackage);
  ASSERT_TRUE(windows.press("Cancel"));
  EXPECT_EQ(finished, 1);
  ASSERT_TRUE(queue.runOne());
  EXPECT_FALSE(nothingSaved());
  loop.runPosted();
  EXPECT_TRUE(nothingSaved());
  EXPECT_EQ(windows.title(), "");
}

TEST_F(FeedUpdateSessionTest, DestroyedAtAnyPointItTakesItsNoticeAwayAndIsNotHeardOfAgain) {
  begin();
  session.reset();
  EXPECT_EQ(windows.title(), "");
  EXPECT_EQ(http.pending(), 0U);
  begin();
  http.answer(200, goodFeed());
  session.reset();
  EXPECT_EQ(windows.title(), "");
  EXPECT_EQ(finished, 0);
}

TEST_F(FeedUpdateSessionTest, SilentOneLeavesTheNoticesOfOthersAlone) {
  windows.show({"Somebody else’s", "", {"OK"}}, {});
  begin(UpdateRequest::automatic);
  session.reset();
  EXPECT_EQ(windows.title(), "Somebody else’s");
}

}  // namespace
}  // namespace nimbo
