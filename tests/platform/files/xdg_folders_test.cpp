// SPDX-License-Identifier: MIT
#include "platform/linux/files/xdg_folders.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(XdgFolders, WithoutVariablesLieInTheHomeFolder) {
  const XdgFolders folders = xdgFolders({{"HOME", "/home/ada"}}, "/account");
  EXPECT_EQ(folders.config, "/home/ada/.config");
  EXPECT_EQ(folders.data, "/home/ada/.local/share");
  EXPECT_EQ(folders.cache, "/home/ada/.cache");
}

TEST(XdgFolders, AbsoluteVariablesAreHonoured) {
  const XdgFolders folders =
      xdgFolders({{"HOME", "/home/ada"}, {"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}, {"XDG_CACHE_HOME", "/e"}},
                 "/account");
  EXPECT_EQ(folders.config, "/c");
  EXPECT_EQ(folders.data, "/d");
  EXPECT_EQ(folders.cache, "/e");
}

TEST(XdgFolders, RelativeAndEmptyVariablesAreIgnored) {
  const XdgFolders folders = xdgFolders(
      {{"HOME", "/home/ada"}, {"XDG_CONFIG_HOME", "c"}, {"XDG_DATA_HOME", ""}, {"XDG_CACHE_HOME", "./e"}}, "/account");
  EXPECT_EQ(folders.config, "/home/ada/.config");
  EXPECT_EQ(folders.data, "/home/ada/.local/share");
  EXPECT_EQ(folders.cache, "/home/ada/.cache");
}

TEST(XdgFolders, WithoutUsableHomeTheAccountsOneStandsIn) {
  EXPECT_EQ(xdgFolders({}, "/account").config, "/account/.config");
  EXPECT_EQ(xdgFolders({{"HOME", ""}}, "/account").config, "/account/.config");
  EXPECT_EQ(xdgFolders({{"HOME", "ada"}}, "/account").config, "/account/.config");
}

}  // namespace
}  // namespace nimbo
