// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_entry.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using Words = std::vector<std::string>;

DesktopEntry entryOf(const std::string& keys) {
  auto entry = DesktopEntry::parse("[Desktop Entry]\n" + keys);
  EXPECT_TRUE(entry);
  return entry.value_or(DesktopEntry());
}

class DesktopEntryCommand : public ::testing::Test {
 protected:
  DesktopEntryCommand() {
    addProgram("tool");
    addProgram("my tool");
  }

  void addProgram(const std::string& name) const {
    std::filesystem::permissions(tree.write("bin/" + name, "#!/bin/sh\n"), std::filesystem::perms::owner_all);
  }
  [[nodiscard]] std::string path(const std::string& name) const { return (tree.path() / "bin" / name).string(); }
  [[nodiscard]] std::optional<Words> command(const std::string& keys) const {
    return entryOf(keys).command((tree.path() / "bin").string());
  }

  TemporaryTree tree;
};

TEST(DesktopEntry, KeysOfTheMainGroupAreRead) {
  const auto entry = DesktopEntry::parse(
      "# a comment\nName=outside\n\n[Desktop Entry]\r\nName = Diary \r\n#Exec=no\nName[de]=Tagebuch\n"
      "[Desktop Action New]\nName=New page\n");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->text("Name"), "Diary");
  EXPECT_EQ(entry->text("Name[de]"), "Tagebuch");
  EXPECT_EQ(entry->text("Exec"), std::nullopt);
}

TEST(DesktopEntry, TextWithoutTheMainGroupIsNone) {
  EXPECT_FALSE(DesktopEntry::parse(""));
  EXPECT_FALSE(DesktopEntry::parse("Name=Diary\n[Desktop Action New]\nName=New page"));
  EXPECT_FALSE(DesktopEntry::parse("[Desktop Entry"));
  EXPECT_FALSE(DesktopEntry::parse(std::string("\0\xff[[[\n=\n", 8)));
}

TEST(DesktopEntry, EscapesInValuesAreResolvedOnce) {
  const auto entry = entryOf(R"(A=\sa\nb\tc\\nd
B=end\)"
                             "\nC=\\x");
  EXPECT_EQ(entry.text("A"), " a\nb\tc\\nd");
  EXPECT_EQ(entry.text("B"), "end\\");
  EXPECT_EQ(entry.text("C"), "\\x");
}

TEST(DesktopEntry, FlagIsAbsentUnlessItIsOne) {
  const auto entry = entryOf("A=true\nB=false\nC=1\nD=yes\nE=");
  EXPECT_EQ(entry.flag("A"), true);
  EXPECT_EQ(entry.flag("B"), false);
  EXPECT_EQ(entry.flag("C"), true);
  EXPECT_EQ(entry.flag("D"), std::nullopt);
  EXPECT_EQ(entry.flag("E"), std::nullopt);
  EXPECT_EQ(entry.flag("F"), std::nullopt);
}

TEST(DesktopEntry, ListIsSplitAtSemicolons) {
  const auto entry = entryOf("A=GNOME;XFCE;\nB=MATE\nC=");
  EXPECT_EQ(entry.list("A"), (Words{"GNOME", "XFCE"}));
  EXPECT_EQ(entry.list("B"), Words{"MATE"});
  EXPECT_EQ(entry.list("C"), Words{});
  EXPECT_EQ(entry.list("D"), std::nullopt);
}

TEST_F(DesktopEntryCommand, ProgramIsFoundAndPlacesForFilesAreLeftOut) {
  EXPECT_EQ(command("Exec=tool %U --title=%c --part=100%% %i @@u %u @@"),
            (Words{path("tool"), "--title=", "--part=100%", "@@u", "@@"}));
  EXPECT_EQ(command("Exec=\"" + path("my tool") + "\" -x"), (Words{path("my tool"), "-x"}));
}

TEST_F(DesktopEntryCommand, QuotedWordsStayWhole) {
  EXPECT_EQ(command(R"(Exec=tool "a \\"b\\" \\$c \\` \\\\" 'one two' "" x"y z"w)"),
            (Words{path("tool"), R"(a "b" $c ` \)", "one two", "", "xy zw"}));
}

TEST_F(DesktopEntryCommand, NothingIsRunWithoutAWholeCommandAndItsPrograms) {
  EXPECT_EQ(command(""), std::nullopt);
  EXPECT_EQ(command("Exec="), std::nullopt);
  EXPECT_EQ(command("Exec=tool \"open"), std::nullopt);
  EXPECT_EQ(command("Exec=%u"), std::nullopt);
  EXPECT_EQ(command("Exec=gone"), std::nullopt);
  EXPECT_EQ(command("Exec=" + path("gone")), std::nullopt);
  EXPECT_EQ(command("Exec=" + tree.path().string() + "/bin"), std::nullopt);
  EXPECT_EQ(command("TryExec=gone\nExec=tool"), std::nullopt);
  EXPECT_EQ(command("TryExec=" + path("my tool") + "\nExec=tool"), Words{path("tool")});
}

TEST_F(DesktopEntryCommand, WordsThatAreQuotedComeBackAsTheyWere) {
  for (const char* const word :
       {"plain", "", "two words", R"(q"b`d$s\e)", "100%u", "a;b&c", "it's", "new\nline", "ä"}) {
    EXPECT_EQ(command("Exec=tool " + escapedForEntry(quotedForExec(word))), (Words{path("tool"), word})) << word;
  }
}

TEST(DesktopEntryText, WordsAreQuotedOnlyWhereTheyMust) {
  EXPECT_EQ(quotedForExec("/usr/bin/nimbo"), "/usr/bin/nimbo");
  EXPECT_EQ(quotedForExec("a b"), "\"a b\"");
  EXPECT_EQ(quotedForExec(R"(a$"`\)"), R"("a\$\"\`\\")");
  EXPECT_EQ(quotedForExec("5%"), "5%%");
  EXPECT_EQ(quotedForExec(""), "\"\"");
}

TEST(DesktopEntryText, ValuesComeBackAsTheyWere) {
  for (const char* const text : {"  two before", "tab\there\n", R"(\back\slash)", "cr\rx", ""}) {
    const auto entry = DesktopEntry::parse("[Desktop Entry]\nA=" + escapedForEntry(text));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->text("A"), text);
  }
}

}  // namespace
}  // namespace nimbo
