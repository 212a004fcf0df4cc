// SPDX-License-Identifier: MIT
#include "platform/linux/machine/proc_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

TEST(ProcFile, EachReadStartsAtTheBeginning) {
  const TemporaryTree tree;
  ProcFile file(tree.write("loadavg", "0.10\n").string());
  std::array<char, 64> buffer;
  EXPECT_EQ(file.read(buffer), "0.10\n");
  tree.write("loadavg", "2.75 more\n");
  EXPECT_EQ(file.read(buffer), "2.75 more\n");
}

TEST(ProcFile, TextIsCutAtTheEndOfTheBuffer) {
  const TemporaryTree tree;
  ProcFile file(tree.write("stat", "cpu  1 2 3\n").string());
  std::array<char, 6> buffer;
  EXPECT_EQ(file.read(buffer), "cpu  1");
}

TEST(ProcFile, MissingFileIsFoundOnceItAppears) {
  const TemporaryTree tree;
  ProcFile file((tree.path() / "late").string());
  std::array<char, 64> buffer;
  EXPECT_EQ(file.read(buffer), std::nullopt);
  tree.write("late", "here\n");
  EXPECT_EQ(file.read(buffer), "here\n");
}

TEST(ProcFile, FolderCannotBeRead) {
  const TemporaryTree tree;
  EXPECT_EQ(readAttribute(tree.path().string()), std::nullopt);
}

TEST(VisitFolder, EveryNameIsVisitedAndAMissingFolderHasNone) {
  const TemporaryTree tree;
  tree.write("a", "");
  tree.write("b/c", "");
  std::vector<std::string> names;
  const auto note = [&](std::string_view name) { names.emplace_back(name); };
  visitFolder((tree.path() / "none").string(), note);
  EXPECT_TRUE(names.empty());
  visitFolder(tree.path().string(), note);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{".", "..", "a", "b"}));
}

TEST(ProcText, LinesAreTakenWholeAndACutOneIsNot) {
  std::string_view rest = "one\n\nthree\ncut";
  EXPECT_EQ(takeLine(rest), "one");
  EXPECT_EQ(takeLine(rest), "");
  EXPECT_EQ(takeLine(rest), "three");
  EXPECT_EQ(takeLine(rest), std::nullopt);
}

TEST(ProcText, WordsAreParted) {
  std::string_view rest = "  a\t b ";
  EXPECT_EQ(takeWord(rest), "a");
  EXPECT_EQ(takeWord(rest), "b");
  EXPECT_EQ(takeWord(rest), "");
}

TEST(ProcText, KilobytesAreBytesAndNothingElse) {
  EXPECT_EQ(parseKilobytes("\t   16632 kB"), 16632U * 1024);
  EXPECT_EQ(parseKilobytes("16632"), std::nullopt);
  EXPECT_EQ(parseKilobytes("16632 MB"), std::nullopt);
  EXPECT_EQ(parseKilobytes("kB"), std::nullopt);
}

}  // namespace
}  // namespace nimbo
