// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_login_item.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <iterator>

#include "platform/posix/files/unique_fd.h"
#include "support/services/program_run.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFile = "config/autostart/com.quellwerk.Nimbo.desktop";

class XdgLoginItemTest : public ::testing::Test {
 protected:
  XdgLoginItemTest() { addProgram("bin/nimbo"); }

  fs::path addProgram(const std::string& relative) const {
    const auto program = tree.write(relative, "#!/bin/sh\necho ran > '" + tree.path().string() + "/ran'\n");
    fs::permissions(program, fs::perms::owner_all);
    return program;
  }

  [[nodiscard]] XdgLoginItem item(const std::string& program = "bin/nimbo", const std::string& desktop = "XFCE") const {
    return XdgLoginItem(
        {tree.path() / "config", tree.path() / program, desktop, (tree.path() / "bin").string() + ":/usr/bin"});
  }

  /// The state that a file with these keys makes.
  [[nodiscard]] LoginItemStatus statusWith(const std::string& keys, const std::string& desktop = "XFCE") const {
    tree.write(kFile, "[Desktop Entry]\nType=Application\nName=Nimbo\n" + keys);
    return item("bin/nimbo", desktop).status();
  }

  void enable() const { ASSERT_TRUE(item().registerItem()); }
  void change(const std::string& more) const { tree.write(kFile, tree.read(kFile) + more); }
  [[nodiscard]] fs::path file() const { return tree.path() / kFile; }

  TemporaryTree tree;
};

TEST_F(XdgLoginItemTest, WithoutAnEntryItIsNotRegistered) {
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, RegisteringWritesAWholeEntryForTheUserAlone) {
  ASSERT_TRUE(item().registerItem());
  const std::string program = (tree.path() / "bin/nimbo").string();
  EXPECT_EQ(tree.read(kFile),
            "[Desktop Entry]\nType=Application\nName=Nimbo\n"
            "Comment=Memory, AI allowances and Keep Awake in the system tray\n"
            "Icon=com.quellwerk.Nimbo\nExec=" +
                program + "\nTryExec=" + program +
                "\nTerminal=false\nStartupNotify=false\nX-GNOME-Autostart-enabled=true\n");
  struct stat status {};
  ASSERT_EQ(::stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  EXPECT_EQ(item().status(), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, UnregisteringRemovesTheEntry) {
  enable();
  ASSERT_TRUE(item().unregisterItem());
  EXPECT_FALSE(fs::exists(file()));
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, UnregisteringWhatIsNotThereIsNoFailure) {
  EXPECT_TRUE(item().unregisterItem());
  fs::create_directories(file().parent_path());
  EXPECT_TRUE(item().unregisterItem());
}

TEST_F(XdgLoginItemTest, EntryThatAnotherProgramSwitchedOffIsNotRegistered) {
  EXPECT_EQ(statusWith("Exec=nimbo\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("Exec=nimbo\nHidden=true\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Exec=nimbo\nHidden=false\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("Exec=nimbo\nX-GNOME-Autostart-enabled=false\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Exec=nimbo\nX-GNOME-Autostart-enabled=true\n"), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, EntrySwitchedOffAndRegisteredAgainCounts) {
  enable();
  change("Hidden=true\n");
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  enable();
  EXPECT_EQ(item().status(), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, EntryCountsOnlyOnTheDesktopsItIsFor) {
  EXPECT_EQ(statusWith("Exec=nimbo\nOnlyShowIn=GNOME;\n", "XFCE"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Exec=nimbo\nOnlyShowIn=GNOME;\n", "ubuntu:GNOME"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("Exec=nimbo\nOnlyShowIn=GNOME;\n", ""), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Exec=nimbo\nNotShowIn=KDE;XFCE;\n", "XFCE"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Exec=nimbo\nNotShowIn=KDE;XFCE;\n", "MATE"), LoginItemStatus::enabled);
}

TEST_F(XdgLoginItemTest, EntryWhoseProgramIsGoneIsNotRegistered) {
  enable();
  fs::rename(tree.path() / "bin/nimbo", tree.path() / "bin/moved");
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  ASSERT_TRUE(item("bin/moved").registerItem());
  EXPECT_EQ(item("bin/moved").status(), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("Exec=moved\nTryExec=gone\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("TryExec=moved\n"), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, RubbishIsNotRegistered) {
  for (const std::string& text :
       {std::string(), std::string("Exec=nimbo\n"), std::string(5000, '\xff'), std::string(200'000, '[')}) {
    tree.write(kFile, text);
    EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  }
  tree.write(kFile, "[Desktop Entry]\nType=Link\nExec=nimbo\n");
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
}

TEST_F(XdgLoginItemTest, FolderInItsPlaceIsLeftAloneAndNamedByTheSystem) {
  fs::create_directories(file());
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  const auto registered = item().registerItem();
  ASSERT_FALSE(registered);
  EXPECT_EQ(registered.error().description, "Operation not supported");
  const auto unregistered = item().unregisterItem();
  ASSERT_FALSE(unregistered);
  EXPECT_EQ(unregistered.error().description, "Is a directory");
  EXPECT_TRUE(fs::is_directory(file()));
}

TEST_F(XdgLoginItemTest, FileWhereTheFolderShouldBeIsAnError) {
  tree.write("config/autostart", "a file");
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  const auto registered = item().registerItem();
  ASSERT_FALSE(registered);
  EXPECT_EQ(registered.error().description, "Not a directory");
}

TEST_F(XdgLoginItemTest, ProgramThatIsNotThereIsNotRegistered) {
  const auto registered = item("bin/gone").registerItem();
  ASSERT_FALSE(registered);
  EXPECT_EQ(registered.error().description, "No such file or directory");
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(XdgLoginItemTest, LinkInItsPlaceIsReplacedAndRemovedButNotFollowed) {
  tree.write("elsewhere.desktop", "[Desktop Entry]\nType=Application\nExec=nimbo\n");
  fs::create_directories(file().parent_path());
  fs::create_symlink(tree.path() / "elsewhere.desktop", file());
  EXPECT_EQ(item().status(), LoginItemStatus::enabled) << "as users link an installed entry";
  ASSERT_TRUE(item().unregisterItem());
  EXPECT_FALSE(fs::exists(fs::symlink_status(file())));

  fs::create_symlink("/dev/null", file());
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered) << "as users mask an entry";
  ASSERT_TRUE(item().registerItem());
  EXPECT_FALSE(fs::is_symlink(file()));
  EXPECT_EQ(item().status(), LoginItemStatus::enabled);
  EXPECT_EQ(tree.read("elsewhere.desktop"), "[Desktop Entry]\nType=Application\nExec=nimbo\n");
}

TEST_F(XdgLoginItemTest, SystemSettingsHaveNothingToOpen) {
  auto nimbo = item();
  nimbo.openSystemSettings();
  EXPECT_FALSE(fs::exists(tree.path() / "config"));
}

// The next ones ask the programs that start entries at log-in.

TEST_F(XdgLoginItemTest, DesktopStartsAProgramOfAnyName) {
  ASSERT_EQ(::mkfifo((tree.path() / "ran").c_str(), 0600), 0);
  const UniqueFd ran(::open((tree.path() / "ran").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  for (const char* const name : {"a b", "a\"b", "a`b", "a$HOME", "a\\b", "a;b&c", "it's", "(ä)"}) {
    addProgram(std::string("odd/") + name);
    ASSERT_TRUE(item(std::string("odd/") + name).registerItem()) << name;
    EXPECT_EQ(item().status(), LoginItemStatus::enabled) << name;
    EXPECT_EQ(runProgram({"/usr/bin/gio", "launch", file().string()}), 0) << name;
    pollfd said{ran.get(), POLLIN, 0};
    EXPECT_EQ(::poll(&said, 1, 10'000), 1) << name;
    std::array<char, 4> word{};
    EXPECT_EQ(::read(ran.get(), word.data(), word.size()), 4);
  }
}

TEST_F(XdgLoginItemTest, SessionManagerMakesAUnitOfTheEntryThatIsEnabledAndOfNoOther) {
  const std::string generator = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";
  ASSERT_TRUE(fs::exists(generator));
  ASSERT_TRUE(item().registerItem());
  const auto units = [&] {
    fs::remove_all(tree.path() / "units");
    fs::create_directories(tree.path() / "units");
    const std::string folder = (tree.path() / "units").string();
    EXPECT_EQ(runProgram({generator, folder, folder, folder},
                         {"XDG_CONFIG_HOME=" + (tree.path() / "config").string(), "XDG_CONFIG_DIRS=/nonexistent",
                          "HOME=" + tree.path().string()}),
              0);
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  };
  EXPECT_EQ(item().status(), LoginItemStatus::enabled);
  EXPECT_EQ(units(), 2) << "the unit and the folder that wants it";
  change("Hidden=true\n");
  EXPECT_EQ(item().status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(units(), 0);
}

}  // namespace
}  // namespace nimbo
