// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/downloads_folder.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

std::string folder(std::string_view userDirs) { return downloadsFolder(userDirs, "/home/u").string(); }

// As xdg-user-dirs-update 0.18 writes it.
constexpr const char* kRecorded = R"(# This file is written by xdg-user-dirs-update
# If you want to change or add directories, just edit the line you're
# interested in. All local changes will be retained on the next run.
# Format is XDG_xxx_DIR="$HOME/yyy", where yyy is a shell-escaped
# homedir-relative path, or XDG_xxx_DIR="/yyy", where /yyy is an
# absolute path. No other format is supported.
#
XDG_DESKTOP_DIR="$HOME/Schreibtisch"
XDG_DOWNLOAD_DIR="$HOME/Téléchargements"
XDG_TEMPLATES_DIR="$HOME/Vorlagen"
)";

TEST(DownloadsFolder, IsTheOneThatTheUserHasNamed) {
  EXPECT_EQ(folder(kRecorded), "/home/u/Téléchargements");
  EXPECT_EQ(folder("XDG_DOWNLOAD_DIR=\"/data/incoming\""), "/data/incoming");
  EXPECT_EQ(folder("  XDG_DOWNLOAD_DIR = \"$HOME/a b\"  \r\n"), "/home/u/a b");
  EXPECT_EQ(folder("XDG_DOWNLOAD_DIR=\"$HOME/\"\n"), "/home/u/") << "switched off: the home folder itself";
  EXPECT_EQ(folder("XDG_DOWNLOAD_DIR=\"$HOME\"\n"), "/home/u/");
}

TEST(DownloadsFolder, EscapesAreThoseOfAShell) {
  EXPECT_EQ(folder(R"(XDG_DOWNLOAD_DIR="$HOME/a\"b\$c\\d")"), R"(/home/u/a"b$c\d)");
}

TEST(DownloadsFolder, LastOneCounts) {
  EXPECT_EQ(folder("XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=\"/b\"\nXDG_DOWNLOAD_DIR=relative\n"), "/b");
}

TEST(DownloadsFolder, WithoutAUsableNameItIsTheUsualOne) {
  for (const char* const text :
       {"", "\n\n", "#XDG_DOWNLOAD_DIR=\"/a\"", "XDG_DOWNLOAD_DIR=\"relative\"", "XDG_DOWNLOAD_DIR=/a",
        "XDG_DOWNLOAD_DIR=\"/a", "XDG_DOWNLOAD_DIR=\"$HOMEWARD/a\"", "XDG_DOWNLOAD_DIR=\"$OTHER/a\"",
        "XDG_DOWNLOAD_DIR=\"\"", "XDG_DOWNLOAD_DIR", "XDG_DOWNLOAD_DIR=\"\\", "MY_XDG_DOWNLOAD_DIR=\"/a\""}) {
    EXPECT_EQ(folder(text), "/home/u/Downloads") << text;
  }
}

}  // namespace
}  // namespace nimbo
