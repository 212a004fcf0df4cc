// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xdg_widget_center.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/files/unique_fd.h"
#include "support/services/bus_peer.h"
#include "support/services/private_bus.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr const char* kGroup = "K3QX9TZ4WB.com.quellwerk.Nimbo";

auto fileCount(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

mode_t mode(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::lstat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

class XdgWidgetFileTest : public ::testing::Test {
 protected:
  [[nodiscard]] bool write(const std::string& relative, std::string_view contents) const {
    return center.writeAtomically(tree.path() / relative, contents);
  }

  TemporaryTree tree;
  XdgWidgetCenter center{nullptr, tree.path()};
};

TEST_F(XdgWidgetFileTest, ContainerIsTheGroupsFolderInTheDataFolder) {
  EXPECT_EQ(center.container(kGroup), tree.path() / kGroup);
  EXPECT_TRUE(fs::is_empty(tree.path())) << "asking makes nothing";
}

TEST_F(XdgWidgetFileTest, NamesThatLeadElsewhereHaveNoContainer) {
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("/"), std::string("/tmp"), std::string("a/b"),
        std::string("../b"), std::string("a/"), std::string("a\0b", 3)}) {
    EXPECT_EQ(center.container(name), std::nullopt) << name;
  }
  EXPECT_TRUE(center.container("..a"));
}

TEST_F(XdgWidgetFileTest, FileAndItsFoldersAreForTheUserAlone) {
  ASSERT_TRUE(write("data/group/file", "text"));
  EXPECT_EQ(tree.read("data/group/file"), "text");
  EXPECT_EQ(mode(tree.path() / "data/group/file"), 0600U);
  EXPECT_EQ(mode(tree.path() / "data/group"), 0700U);
  EXPECT_EQ(mode(tree.path() / "data"), 0700U);
}

TEST_F(XdgWidgetFileTest, FileThatOthersCouldReadBecomesTheUsersAlone) {
  tree.write("file", "old");
  fs::permissions(tree.path() / "file", fs::perms{0666});
  ASSERT_TRUE(write("file", "new"));
  EXPECT_EQ(mode(tree.path() / "file"), 0600U);
}

TEST_F(XdgWidgetFileTest, LinkInPlaceOfTheFileIsNotFollowedNorReplaced) {
  tree.write("precious", "old");
  fs::create_symlink("precious", tree.path() / "file");
  EXPECT_FALSE(write("file", "new"));
  EXPECT_EQ(tree.read("precious"), "old");
  EXPECT_TRUE(fs::is_symlink(tree.path() / "file"));
  EXPECT_EQ(fileCount(tree.path()), 2);
}

TEST_F(XdgWidgetFileTest, FolderInPlaceOfTheFileIsAFailure) {
  tree.write("file/inside", "kept");
  EXPECT_FALSE(write("file", "new"));
  EXPECT_EQ(tree.read("file/inside"), "kept");
  EXPECT_EQ(fileCount(tree.path()), 1);
}

TEST_F(XdgWidgetFileTest, FileInPlaceOfTheFolderIsAFailure) {
  tree.write("group", "kept");
  EXPECT_FALSE(write("group/file", "new"));
  EXPECT_EQ(tree.read("group"), "kept");
}

/// A small file system of its own over a folder of the tree, where that is permitted.
class SmallDisk {
 public:
  explicit SmallDisk(fs::path folder) : folder_(std::move(folder)) {
    fs::create_directory(folder_);
    mounted_ = ::mount("tmpfs", folder_.c_str(), "tmpfs", 0, "size=16k") == 0;
    error_ = errno;
  }
  ~SmallDisk() {
    if (mounted_) ::umount(folder_.c_str());
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  [[nodiscard]] bool mounted() const { return mounted_; }
  [[nodiscard]] const char* failure() const { return std::strerror(error_); }
  [[nodiscard]] bool makeReadOnly() const {
    return ::mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=16k") == 0;
  }

 private:
  fs::path folder_;
  bool mounted_ = false;
  int error_ = 0;
};

TEST_F(XdgWidgetFileTest, FullDiskLeavesTheOldFileAndNoTemporary) {
  const SmallDisk disk(tree.path() / "disk");
  if (!disk.mounted()) GTEST_SKIP() << "mounting is not permitted here: " << disk.failure();
  ASSERT_TRUE(write("disk/file", "old"));
  EXPECT_FALSE(write("disk/file", std::string(100'000, 'x')));
  EXPECT_EQ(tree.read("disk/file"), "old");
  EXPECT_EQ(fileCount(tree.path() / "disk"), 1);
  EXPECT_TRUE(write("disk/file", "new")) << "the disk has room again";
}

TEST_F(XdgWidgetFileTest, ReadOnlyDiskLeavesTheOldFile) {
  const SmallDisk disk(tree.path() / "disk");
  if (!disk.mounted()) GTEST_SKIP() << "mounting is not permitted here: " << disk.failure();
  ASSERT_TRUE(write("disk/file", "old"));
  ASSERT_TRUE(disk.makeReadOnly());
  EXPECT_FALSE(write("disk/file", "new"));
  EXPECT_FALSE(write("disk/group/file", "new"));
  EXPECT_EQ(tree.read("disk/file"), "old");
  EXPECT_EQ(fileCount(tree.path() / "disk"), 1);
}

TEST_F(XdgWidgetFileTest, FolderWithoutThePermissionIsAFailure) {
  if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere; a read-only disk stands in";
  tree.write("group/file", "old");
  fs::permissions(tree.path() / "group", fs::perms{0500});
  EXPECT_FALSE(write("group/file", "new"));
  EXPECT_EQ(tree.read("group/file"), "old");
  fs::permissions(tree.path() / "group", fs::perms{0700});
}

/// A version of the file that says of itself how long it is.
std::string version(int number) {
  const auto length = static_cast<std::size_t>(number) * 37 % 9000;
  return std::to_string(length) + ":" + std::string(length, static_cast<char>('a' + number % 26));
}

bool isWhole(const std::string& text) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) return false;
  const std::string filling = text.substr(colon + 1);
  return text.substr(0, colon) == std::to_string(filling.size()) &&
         std::all_of(filling.begin(), filling.end(), [&](char letter) { return letter == filling.front(); });
}

/// Reads the file over and over while another thread replaces it.
class Reader {
 public:
  explicit Reader(fs::path file) : file_(std::move(file)), thread_([this] { work(); }) {}
  ~Reader() { stop(); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  void stop() {
    stopping_ = true;
    if (thread_.joinable()) thread_.join();
  }
  [[nodiscard]] int reads() const { return reads_; }
  int missing = 0;  ///< valid after `stop`, as the next two
  int torn = 0;
  int open = 0;  ///< to others

 private:
  void work() {
    while (!stopping_) readOnce();
  }

  void readOnce() {
    const UniqueFd descriptor(::open(file_.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!descriptor || ::fstat(descriptor.get(), &status) != 0) {
      ++missing;
      return;
    }
    std::array<char, 10'000> bytes{};
    const auto size = ::read(descriptor.get(), bytes.data(), bytes.size());
    const std::string text(bytes.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    if (!isWhole(text)) ++torn;
    if ((status.st_mode & 07777) != 0600) ++open;
    ++reads_;
  }

  const fs::path file_;
  std::atomic<bool> stopping_{false};
  std::atomic<int> reads_{0};
  std::thread thread_;
};

TEST_F(XdgWidgetFileTest, ReaderNeverMissesTheFileNorSeesAPart) {
  ASSERT_TRUE(write("file", version(0)));
  Reader reader(tree.path() / "file");
  for (int number = 1; number <= 1000; ++number) ASSERT_TRUE(write("file", version(number)));
  while (reader.reads() == 0) std::this_thread::yield();
  reader.stop();
  EXPECT_EQ(reader.missing, 0);
  EXPECT_EQ(reader.torn, 0);
  EXPECT_EQ(reader.open, 0);
  RecordProperty("reads", reader.reads());
  EXPECT_EQ(tree.read("file"), version(1000));
  EXPECT_EQ(fileCount(tree.path()), 1);
}

class XdgWidgetSignalTest : public ::testing::Test {
 protected:
  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.event(), bus.address()};
  XdgWidgetCenter center{session.get(), "/nowhere"};
};

TEST_F(XdgWidgetSignalTest, EachReloadIsOneSignalInOrder) {
  const BusPeer widget(loop, bus.address());
  std::vector<std::string> heard;
  const BusSlot match = addMatch(widget.bus(), "type='signal'", [&heard](sd_bus_message* signal) {
    const char* kind = nullptr;
    if (sd_bus_message_is_signal(signal, "org.freedesktop.DBus", nullptr) > 0) return;
    ASSERT_GT(sd_bus_message_read(signal, "s", &kind), 0);
    heard.push_back(std::string(sd_bus_message_get_path(signal)) + " " + sd_bus_message_get_interface(signal) + "." +
                    sd_bus_message_get_member(signal) + " " + kind);
  });
  widget.settle("org.freedesktop.DBus");

  center.reloadTimelines("com.quellwerk.Nimbo.usage");
  center.reloadTimelines("com.quellwerk.Nimbo.temperature");
  const char* name = nullptr;
  ASSERT_GE(sd_bus_get_unique_name(session.get(), &name), 0);
  widget.settle(name);
  EXPECT_EQ(heard, (std::vector<std::string>{
                       "/com/quellwerk/Nimbo com.quellwerk.Nimbo.Widgets.TimelinesReloaded com.quellwerk.Nimbo.usage",
                       "/com/quellwerk/Nimbo com.quellwerk.Nimbo.Widgets.TimelinesReloaded "
                       "com.quellwerk.Nimbo.temperature"}));
}

TEST_F(XdgWidgetSignalTest, WithoutABusNobodyIsToldAndFilesAreStillWritten) {
  const TemporaryTree tree;
  XdgWidgetCenter alone(nullptr, tree.path());
  alone.reloadTimelines("com.quellwerk.Nimbo.usage");
  EXPECT_TRUE(alone.writeAtomically(tree.path() / "file", "text"));
}

TEST_F(XdgWidgetSignalTest, BusThatHasGoneIsNoTrouble) {
  bus.stop();
  EXPECT_TRUE(loop.runUntil([this] { return sd_bus_is_open(session.get()) <= 0; }));
  center.reloadTimelines("com.quellwerk.Nimbo.usage");
  EXPECT_TRUE(center.container(kGroup));
}

}  // namespace
}  // namespace nimbo
