// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_application.h"

#include <gtest/gtest.h>

#include "platform/linux/files/xdg_folders.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using Folders = std::vector<std::filesystem::path>;
using Words = std::vector<std::string>;

constexpr XdgFolders (*kHome)() = [] { return XdgFolders{"/h/config", "/h/data", "/h/cache"}; };

TEST(ApplicationFolders, UsersOwnComeFirstAndExportsLast) {
  EXPECT_EQ(applicationFolders({{"XDG_DATA_DIRS", "/a:relative::/b"}}, kHome()),
            (Folders{"/h/data/applications", "/a/applications", "/b/applications",
                     "/h/data/flatpak/exports/share/applications", "/var/lib/flatpak/exports/share/applications",
                     "/var/lib/snapd/desktop/applications"}));
}

TEST(ApplicationFolders, UnsetOrEmptyVariableMeansTheUsualOnes) {
  for (const auto& environment :
       {std::map<std::string, std::string>{}, std::map<std::string, std::string>{{"XDG_DATA_DIRS", ""}}}) {
    const auto folders = applicationFolders(environment, kHome());
    ASSERT_GE(folders.size(), 3U);
    EXPECT_EQ(folders[1], "/usr/local/share/applications");
    EXPECT_EQ(folders[2], "/usr/share/applications");
  }
}

class InstalledApplicationTest : public ::testing::Test {
 protected:
  InstalledApplicationTest() {
    std::filesystem::permissions(tree.write("bin/diary", "#!/bin/sh\n"), std::filesystem::perms::owner_all);
  }

  void addEntry(const std::string& file, const std::string& keys) const {
    tree.write(file, "[Desktop Entry]\nType=Application\nName=Diary\n" + keys);
  }
  [[nodiscard]] std::optional<InstalledApplication> find() const {
    return findInstalledApplication({"org.example.Diary", "diary"},
                                    {tree.path() / "user", tree.path() / "missing", tree.path() / "system"},
                                    (tree.path() / "bin").string());
  }

  TemporaryTree tree;
  const std::string program = (tree.path() / "bin/diary").string();
};

TEST_F(InstalledApplicationTest, NothingInstalledIsAbsent) { EXPECT_FALSE(find()); }

TEST_F(InstalledApplicationTest, EntryOfASecondaryIdentifierIsFound) {
  addEntry("system/diary.desktop", "Exec=diary --new %U\n");
  const auto found = find();
  ASSERT_TRUE(found);
  EXPECT_EQ(found->desktopId, "diary");
  EXPECT_EQ(found->command, (Words{program, "--new"}));
  EXPECT_FALSE(found->isActivatable);
}

TEST_F(InstalledApplicationTest, UsersEntryBeatsTheSystems) {
  addEntry("system/diary.desktop", "Exec=diary --system\n");
  addEntry("user/diary.desktop", "Exec=diary --user\n");
  EXPECT_EQ(find()->command, (Words{program, "--user"}));
}

TEST_F(InstalledApplicationTest, EntryMarkedAsRemovedHidesTheSystems) {
  addEntry("system/diary.desktop", "Exec=diary\n");
  addEntry("user/diary.desktop", "Hidden=true\n");
  EXPECT_FALSE(find());
}

TEST_F(InstalledApplicationTest, EntryThatOutlivedItsProgramIsPassedOver) {
  addEntry("system/org.example.Diary.desktop", "Exec=gone\n");
  EXPECT_FALSE(find());
  addEntry("system/diary.desktop", "Exec=diary\n");
  EXPECT_EQ(find()->desktopId, "diary");
}

TEST_F(InstalledApplicationTest, EntryThatIsActivatedNeedsNoCommand) {
  addEntry("system/org.example.Diary.desktop", "DBusActivatable=true\n");
  const auto found = find();
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->isActivatable);
  EXPECT_TRUE(found->command.empty());
  addEntry("system/org.example.Diary.desktop", "DBusActivatable=true\nExec=gone\n");
  EXPECT_FALSE(find()) << "its program is gone";
}

TEST(ApplicationMarks, OnlyTheApplicationsOfThisProgramAreKnown) {
  const auto* const marks = applicationMarks("com.anthropic.claudefordesktop");
  ASSERT_NE(marks, nullptr);
  EXPECT_EQ(marks->identifier, "com.anthropic.claudefordesktop");
  EXPECT_FALSE(marks->desktopIds.empty());
  EXPECT_EQ(applicationMarks("com.example.other"), nullptr);
  EXPECT_EQ(applicationMarks(""), nullptr);
}

}  // namespace
}  // namespace nimbo
