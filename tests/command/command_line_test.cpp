// SPDX-License-Identifier: MIT
#include "command/command_line.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

using Words = std::vector<std::string>;
using std::chrono::system_clock;

const system_clock::time_point kNow{std::chrono::seconds(1795219200)};

Result<Command, std::string> parsed(Words words) {
  words.insert(words.begin(), "/usr/bin/nimbo");
  EXPECT_TRUE(isCommand(words));
  return commandOf(words, kNow);
}

template <class Wanted>
Wanted as(const Words& words) {
  const auto command = parsed(words);
  EXPECT_TRUE(command) << command.error();
  const auto* const wanted = command ? std::get_if<Wanted>(&*command) : nullptr;
  EXPECT_NE(wanted, nullptr);
  return wanted ? *wanted : Wanted();
}

TEST(CommandLine, OnlyTheFirstWordMakesACommand) {
  EXPECT_FALSE(isCommand(Words{}));
  EXPECT_FALSE(isCommand(Words{"awake"}));
  EXPECT_FALSE(isCommand(Words{"nimbo", "nimbo://awake"}));
  EXPECT_FALSE(isCommand(Words{"nimbo", "--diagnostics", "awake"}));
  EXPECT_FALSE(isCommand(Words{"nimbo", "Awake"}));
}

TEST(CommandLine, SessionHasAnEndOrNone) {
  EXPECT_EQ(as<AwakeOn>({"awake", "on"}).until, std::nullopt);
  EXPECT_FALSE(as<AwakeOn>({"awake", "on"}).keepDisplayOn);
  const auto timed = as<AwakeOn>({"awake", "on", "--display", "--for", "2h"});
  EXPECT_EQ(timed.until, kNow + std::chrono::hours(2));
  EXPECT_TRUE(timed.keepDisplayOn);
  EXPECT_GT(as<AwakeOn>({"awake", "on", "--until", "18:30"}).until, kNow);
  EXPECT_EQ(as<AwakeExtend>({"awake", "extend", "30m"}).by, std::chrono::minutes(30));
  as<AwakeOff>({"awake", "off"});
}

TEST(CommandLine, WordsOfACommandThatIsRunAreItsOwn) {
  EXPECT_EQ(as<AwakeRun>({"awake", "run", "--", "make", "--display", "-j2"}).command,
            (Words{"make", "--display", "-j2"}));
  const auto shown = as<AwakeRun>({"awake", "run", "--display", "make", "--json"});
  EXPECT_EQ(shown.command, (Words{"make", "--json"}));
  EXPECT_TRUE(shown.keepDisplayOn);
  EXPECT_EQ(as<AwakeRun>({"awake", "run", "--", "--", "x"}).command, (Words{"--", "x"}));
}

TEST(CommandLine, ProcessesAreNumbers) {
  const auto live = as<AwakeWhile>({"awake", "while", "12", "--display", "7"});
  EXPECT_EQ(live.processes, (std::vector<std::int32_t>{12, 7}));
  EXPECT_TRUE(live.keepDisplayOn);
}

TEST(CommandLine, FiguresAndPages) {
  EXPECT_EQ(as<AwakeReport>({"awake", "status"}).form, Form());
  EXPECT_EQ(as<MemoryReport>({"memory", "--json"}).form, (Form{.json = true}));
  EXPECT_EQ(as<UsageReport>({"usage", "--watch", "--json"}).form, (Form{.json = true, .watch = true}));
  EXPECT_EQ(as<ProcessesReport>({"processes", "--short"}).form, (Form{.brief = true}));
  EXPECT_EQ(as<ProcessesReport>({"processes"}).count, 10U);
  EXPECT_EQ(as<ProcessesReport>({"processes", "-n", "15", "--json"}).count, 15U);
  EXPECT_EQ(as<OpenPage>({"open"}).page, "");
  EXPECT_EQ(as<OpenPage>({"open", "settings"}).page, "settings");
  as<QuitProgram>({"quit"});
  as<ShowHelp>({"--help"});
  as<ShowVersion>({"--version"});
}

TEST(CommandLine, WhatIsNotUnderstoodIsSaidInOneLine) {
  for (const Words& words : {Words{"awake"},
                             Words{"awake", "of"},
                             Words{"awake", "off", "now"},
                             Words{"awake", "on", "--for"},
                             Words{"awake", "on", "--for", "soon"},
                             Words{"awake", "on", "--until", "25:00"},
                             Words{"awake", "on", "--for", "1h", "--until", "18:30"},
                             Words{"awake", "on", "forever"},
                             Words{"awake", "extend"},
                             Words{"awake", "extend", "1h", "1h"},
                             Words{"awake", "status", "--xml"},
                             Words{"awake", "run"},
                             Words{"awake", "run", "--"},
                             Words{"awake", "run", "--loud", "make"},
                             Words{"awake", "while"},
                             Words{"awake", "while", "-1"},
                             Words{"awake", "while", "99999999999"},
                             Words{"awake", "while", "12x"},
                             Words{"memory", "all"},
                             Words{"usage", "codex"},
                             Words{"processes", "-n"},
                             Words{"processes", "-n", "0"},
                             Words{"processes", "-n", "1001"},
                             Words{"open", "door"},
                             Words{"open", "awake", "usage"},
                             Words{"quit", "now"},
                             Words{"awake", "on", "line\nbreak\x1b[31m"}}) {
    const auto command = parsed(words);
    ASSERT_FALSE(command) << words.back();
    EXPECT_EQ(command.error().find_first_of("\n\x1b"), std::string::npos);
  }
}

}  // namespace
}  // namespace nimbo
