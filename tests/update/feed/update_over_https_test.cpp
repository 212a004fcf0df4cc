// SPDX-License-Identifier: MIT
// The whole way: the real module, a real server, real files.
#include <fstream>
#include <set>

#include "platform/clock.h"
#include "platform/http/http_client_fixture.h"
#include "platform/linux/loop/utility_thread.h"
#include "platform/linux/update/debian/debian_system.h"
#include "platform/linux/update/update_module.h"
#include "platform/posix/loop/thread_work_queue.h"
#include "support/fake_update_windows.h"
#include "support/fake_user_defaults.h"
#include "support/fake_workspace.h"
#include "update/feed/signed_feed.h"
#include "update/scheduled_updater.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

const std::string kServedPackage(200'000, 'p');
constexpr const char* kPackageName = "nimbo_1.2.deb";

std::string ok(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string cutOff(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
         body.substr(0, body.size() / 2);
}

std::string redirection(const std::string& url) {
  return "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\nContent-Length: 0\r\n\r\n";
}

class UpdateOverHttps : public HttpClientTest {
 protected:
  /// What the publisher says of the package, which this answer brings.
  [[nodiscard]] UpdateItem goodItem(const std::string& packageAnswer = ok(kServedPackage)) {
    const std::string host = server.hostAnswering(std::string("/") + kPackageName, packageAnswer);
    auto item = itemFor(kServedPackage, "1.2", host + "/" + kPackageName);
    item.architecture = debianArchitecture();
    return publisher.sign(item);
  }

  /// Lets the user ask, with that answer for a feed, and waits for what comes of it.
  void check(const std::string& feedAnswer) {
    updater.reset();
    const UpdateSetup setup{
        loop, client, queue, workspace, windows, {server.url(feedAnswer), publisher.publicKey()}, {"1.0", "1.0"}};
    updater.emplace(ScheduledUpdater::Services{defaults, clock, loop, windows},
                    updateSessionFromModule(modules, setup, {tree.path() / "home", tree.path() / "config"}));
    updater->checkForUpdates();
    ASSERT_EQ(windows.title(), "Checking for updates…");
    ASSERT_TRUE(runUntil([this] { return windows.title() != "Checking for updates…"; }));
  }

  void download() {
    ASSERT_TRUE(windows.press("Download"));
    ASSERT_TRUE(runUntil([this] { return !windows.title().starts_with("Downloading"); }));
  }

  /// Nobody was offered anything, and nothing is different but the time of the last check.
  void expectUntouched(const char* situation) {
    EXPECT_FALSE(windows.title().ends_with("is available")) << situation;
    EXPECT_FALSE(windows.title().ends_with("is ready to install")) << situation;
    EXPECT_TRUE(fs::is_empty(tree.path())) << situation;
    for (const auto& write : domains.writes) EXPECT_EQ(write, "com.quellwerk.Nimbo/SULastCheckTime") << situation;
    EXPECT_TRUE(windows.press("OK")) << situation;
    EXPECT_TRUE(updater->canCheckForUpdates()) << situation;
  }

  Publisher publisher;
  ThreadWorkQueue queue{"Nimbo.utility", loop, makeUtilityThread};
  SystemClock clock;
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  FakeWorkspace workspace;
  FakeUpdateWindows windows;
  TemporaryTree tree;
  std::optional<ScheduledUpdater> updater;
};

TEST_F(UpdateOverHttps, GoodUpdateGoesToTheDownloadsFolderAndIsShownThere) {
  check(ok(feedOf({goodItem()})));
  EXPECT_EQ(windows.title(), "Nimbo 1.2 is available");
  EXPECT_TRUE(fs::is_empty(tree.path()));
  download();
  EXPECT_EQ(windows.title(), "Nimbo 1.2 is ready to install");
  EXPECT_EQ(tree.read("home/Downloads/nimbo_1.2.deb"), kServedPackage);
  ASSERT_TRUE(windows.press("Show in Folder"));
  EXPECT_EQ(workspace.filesRevealed, std::vector{tree.path() / "home/Downloads" / kPackageName});
  EXPECT_TRUE(updater->canCheckForUpdates());
  const auto files = fs::directory_iterator(tree.path() / "home/Downloads");
  EXPECT_EQ(std::distance(fs::begin(files), fs::end(files)), 1);
}

TEST_F(UpdateOverHttps, FolderIsTheOneThatTheUserHasNamedByThen) {
  tree.write("home/Empfangen/nimbo_1.2.deb", "an older download");
  check(ok(feedOf({goodItem()})));
  tree.write("config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Empfangen\"\n");
  download();
  EXPECT_EQ(tree.read("home/Empfangen/nimbo_1.2 (1).deb"), kServedPackage);
  EXPECT_EQ(tree.read("home/Empfangen/nimbo_1.2.deb"), "an older download");
}

TEST_F(UpdateOverHttps, RequestsTellNothingButTheProgramsName) {
  check(ok(feedOf({goodItem()})));
  download();
  ASSERT_EQ(server.requests(), 2);
  for (const int number : {1, 2}) {
    const std::string head = server.request(number);
    EXPECT_EQ(head.substr(head.find("\r\n")),
              "\r\nHost: localhost:" + server.port() + "\r\nUser-Agent: Nimbo/1.2\r\nAccept: */*\r\n\r\n");
  }
}

TEST_F(UpdateOverHttps, FeedsThatAreNotAsTheyShouldBeOfferNothing) {
  const std::string good = feedOf({goodItem()});
  HttpsServer other(authority());
  const std::vector<std::pair<const char*, std::string>> answers{
      {"truncated", cutOff(good)},
      {"redirected", redirection(other.url(ok(good)))},
      {"huge", ok(good + std::string(1U << 20, ' '))},
      {"not XML", ok("This is not a feed.")},
      {"another document", ok("<!DOCTYPE html><html><body>Welcome</body></html>")},
      {"with a document type", ok("<!DOCTYPE rss>" + good.substr(good.find("<rss")))},
      {"empty", ok("")},
      {"not found", "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"},
      {"not HTTP", "220 ready\r\n"},
  };
  for (const auto& [situation, answer] : answers) {
    check(answer);
    EXPECT_EQ(windows.title(), "Couldn’t check for updates") << situation;
    expectUntouched(situation);
  }
  EXPECT_EQ(other.requests(), 0);
}

TEST_F(UpdateOverHttps, ItemsThatAreNotSignedAsTheyStandAreNotOffered) {
  const auto good = goodItem();
  std::vector<UpdateItem> items{itemFor(kServedPackage, "1.2", good.url), Publisher().sign(good)};
  items[0].architecture = good.architecture;
  // Each as a liar would like it: newer, for more systems, another package.
  items.resize(7, good);
  items[2].version = "99";
  items[3].shortVersion = "1.2 (recommended)";
  items[4].minimumSystem = "";
  items[5].url = "https://localhost:" + server.port() + "/other.deb";
  items[6].sha256 = sha256Of("another package");
  items.push_back(good);
  items.back().length += 1;
  for (const auto& item : items) {
    check(ok(feedOf({item})));
    EXPECT_EQ(windows.title(), "Couldn’t check for updates");
    expectUntouched(updateStatement(item).c_str());
  }
}

TEST_F(UpdateOverHttps, ItemsForOthersOrFromThePastAreNotOffered) {
  auto older = goodItem();
  older.version = "0.9";
  auto same = older;
  same.version = "1.0";
  auto foreign = goodItem();
  foreign.architecture = "pdp11";
  auto future = goodItem();
  future.minimumSystem = "99.0";
  for (const auto& item : {older, same, foreign, future}) {
    check(ok(feedOf({publisher.sign(item)})));
    EXPECT_EQ(windows.title(), "You’re up to date");
    expectUntouched(updateStatement(item).c_str());
  }
}

TEST_F(UpdateOverHttps, ForgedItemsDoNotHideTheGoodOne) {
  const auto good = goodItem();
  auto forged = good;
  forged.version = "99";
  check(ok(feedOf({forged, good, itemFor(kServedPackage, "98")})));
  EXPECT_EQ(windows.title(), "Nimbo 1.2 is available");
}

TEST_F(UpdateOverHttps, PackagesThatAreNotThePromisedOneAreNotKept) {
  std::string changed = kServedPackage;
  changed[100'000] ^= 1;
  HttpsServer other(authority());
  const std::vector<std::pair<const char*, std::string>> answers{
      {"changed", ok(changed)},
      {"shorter than told", ok(kServedPackage.substr(1))},
      {"larger than told", ok(kServedPackage + "!")},
      {"truncated", cutOff(kServedPackage)},
      {"empty", ok("")},
      {"redirected", redirection(other.url(ok(kServedPackage)))},
      {"not found", "HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nNot found"},
      {"not HTTP", "220 ready\r\n"},
  };
  for (const auto& [situation, answer] : answers) {
    check(ok(feedOf({goodItem(answer)})));
    EXPECT_EQ(windows.title(), "Nimbo 1.2 is available") << situation;
    download();
    EXPECT_EQ(windows.title(), "Couldn’t download Nimbo 1.2") << situation;
    expectUntouched(situation);
  }
  EXPECT_EQ(other.requests(), 0);
}

TEST_F(UpdateOverHttps, CancellingLeavesTheServerAtOnce) {
  const std::string url = server.url("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n", "silence");
  const UpdateSetup setup{loop, client, queue, workspace, windows, {url, publisher.publicKey()}, {"1.0", "1.0"}};
  updater.emplace(ScheduledUpdater::Services{defaults, clock, loop, windows},
                  updateSessionFromModule(modules, setup, {tree.path(), tree.path()}));
  updater->checkForUpdates();
  ASSERT_TRUE(runUntil([this] { return server.requests() == 1; }));
  ASSERT_TRUE(windows.press("Cancel"));
  EXPECT_TRUE(runUntil([this] { return server.left() == 1; }));
  EXPECT_TRUE(updater->canCheckForUpdates());
}

TEST_F(UpdateOverHttps, WithoutTheModuleThereIsNoSession) {
  DlModuleLoader nothing("/nonexistent");
  const UpdateSetup setup{loop, client, queue, workspace, windows, {"https://localhost/", ""}, {}};
  EXPECT_EQ(updateSessionFromModule(nothing, setup, {})(UpdateRequest::user, [] {}), nullptr);
}

}  // namespace
}  // namespace nimbo
