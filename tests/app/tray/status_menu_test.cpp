// SPDX-License-Identifier: MIT
#include "app/tray/status_menu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nimbo {
namespace {

std::vector<std::string> titles(const StatusMenu& menu) {
  std::vector<std::string> result;
  for (const auto& entry : menu.entries) {
    result.push_back(entry.kind == MenuEntry::Kind::separator ? "-" : entry.title);
  }
  return result;
}

TEST(StatusMenu, WithoutASessionOffersToKeepAwake) {
  const auto menu = makeStatusMenu({}, AwakeSession::off);
  EXPECT_EQ(menu.title, "Nimbo");
  EXPECT_EQ(titles(menu), (std::vector<std::string>{"Keep awake until stopped", "-", "Settings…", "Check for Updates…",
                                                    "-", "Quit Nimbo"}));
}

TEST(StatusMenu, DuringASessionOffersToStopIt) {
  EXPECT_EQ(makeStatusMenu({}, AwakeSession::running).entries[0].title, "Stop awake session");
}

TEST(StatusMenu, OnlySettingsHasAKeyEquivalent) {
  const auto menu = makeStatusMenu({}, AwakeSession::off);
  for (const auto& entry : menu.entries) {
    EXPECT_EQ(entry.keyEquivalent, entry.title == "Settings…" ? "," : "") << entry.title;
  }
}

TEST(StatusMenu, EntryIsEnabledExactlyWhenItHasAnAction) {
  StatusMenuActions actions;
  actions.quit = [] {};
  for (const auto& entry : makeStatusMenu(actions, AwakeSession::off).entries) {
    EXPECT_EQ(entry.enabled, entry.title == "Quit Nimbo") << entry.title;
  }
}

TEST(StatusMenu, EntriesRunTheirActions) {
  std::string ran;
  const StatusMenuActions actions{[&] { ran += "a"; }, [&] { ran += "s"; }, [&] { ran += "u"; }, [&] { ran += "q"; }};
  for (const auto& entry : makeStatusMenu(actions, AwakeSession::off).entries) {
    if (entry.action) entry.action();
  }
  EXPECT_EQ(ran, "asuq");
}

}  // namespace
}  // namespace nimbo
