// SPDX-License-Identifier: MIT
#include "platform/linux/accessibility/atspi_accessibility.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <stop_token>

#include "base/text.h"
#include "platform/contracts/accessibility_contract.h"
#include "support/services/fake_atspi.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Lines = std::vector<std::string>;
using Manner = FakeAtspiDesktop::Manner;

constexpr char kClaude[] = "com.anthropic.claudefordesktop";
constexpr std::uint32_t kSection = 85;
constexpr std::uint32_t kLink = 88;
constexpr std::uint32_t kDocumentWeb = 95;
constexpr std::uint32_t kStatic = 116;

FakeAtspiNode word(const std::string& text) { return {.name = text, .text = text, .role = kStatic}; }

/// Words in bold or the like: text with a place of its own in the parent's.
FakeAtspiNode strong(const std::string& text, std::uint32_t role = kStatic) {
  return {.text = text, .children = {word(text)}, .attributes = {{"display", "inline"}}, .role = role};
}

FakeAtspiNode paragraph(const std::string& text, std::vector<FakeAtspiNode> children) {
  return {.text = text, .children = std::move(children), .attributes = {{"display", "block"}}};
}

class AtspiAccessibilityTest : public testing::Test {
 protected:
  AtspiAccessibilityTest() { runAs("/opt/Claude/claude-desktop"); }

  /// What every application of the test, which is this process, seems to run.
  void runAs(const std::string& executable) const {
    const auto folder = proc.path() / std::to_string(getpid());
    std::filesystem::remove_all(folder);
    if (executable.empty()) return;
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink(executable, folder / "exe");
  }

  void show(std::vector<FakeAtspiNode> windows) { application.emplace(desktop, std::move(windows)); }

  std::unique_ptr<AccessibleApplication> open(milliseconds timeout = std::chrono::seconds(10)) {
    auto found = accessibility.application(kClaude);
    if (found) found->setMessagingTimeout(timeout);
    return found;
  }

  /// Every text below the element, depth first.
  static void addLines(Lines& lines, AccessibleElement& element) {
    for (const auto& text : {element.title(), element.description(), element.value()}) {
      if (text && !text->empty()) lines.push_back(*text);
    }
    for (const auto& child : element.children(10000)) addLines(lines, *child);
  }

  Lines linesOf(FakeAtspiNode window) {
    show({std::move(window)});
    const auto found = open();
    Lines lines;
    for (const auto& element : found->windows(5)) addLines(lines, *element);
    return lines;
  }

  static milliseconds timeOf(const std::function<void()>& task) {
    const auto before = steady_clock::now();
    task();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - before);
  }

  TemporaryTree proc;
  PrivateBus session;
  FakeAtspiDesktop desktop{session.address()};
  std::optional<FakeAtspiApplication> application;
  AtspiAccessibility accessibility{session.address(), proc.path().string()};
};

FakeAtspiNode nodeOf(const FakeElement& element) {
  FakeAtspiNode node{.name = element.title.value_or(""), .description = element.description.value_or("")};
  node.text = element.value;
  for (const auto& child : element.children) node.children.push_back(nodeOf(child));
  return node;
}

struct AtspiHost final : AccessibilityHost {
  [[nodiscard]] Accessibility& accessibility() override { return atspi; }
  void show(const std::vector<FakeElement>& windows) override {
    const auto folder = proc.path() / std::to_string(getpid());
    std::filesystem::create_directories(folder);
    std::filesystem::create_symlink("/opt/Claude/claude-desktop", folder / "exe");
    std::vector<FakeAtspiNode> nodes;
    for (const auto& window : windows) nodes.push_back(nodeOf(window));
    application.emplace(desktop, std::move(nodes));
  }
  void hang() override { application->thread().freeze(); }
  void end() override { application->vanish(); }

  TemporaryTree proc;
  PrivateBus session;
  FakeAtspiDesktop desktop{session.address()};
  std::optional<FakeAtspiApplication> application;
  AtspiAccessibility atspi{session.address(), proc.path().string()};
};
INSTANTIATE_TEST_SUITE_P(Atspi, AccessibilityContract, testing::Values(makeAccessibilityHost<AtspiHost>));

TEST_F(AtspiAccessibilityTest, ReachableBusMeansTrust) { EXPECT_TRUE(accessibility.isTrusted()); }

TEST_F(AtspiAccessibilityTest, NoSessionBusMeansNoTrust) {
  AtspiAccessibility nowhere("unix:path=/nowhere", proc.path().string());
  EXPECT_FALSE(nowhere.isTrusted());
  EXPECT_FALSE(AtspiAccessibility("").isTrusted());
}

TEST_F(AtspiAccessibilityTest, NoLauncherMeansNoTrust) {
  const PrivateBus empty;
  EXPECT_FALSE(AtspiAccessibility(empty.address()).isTrusted());
}

TEST_F(AtspiAccessibilityTest, LauncherThatAnswersGarbageMeansNoTrust) {
  desktop.launcherManner = Manner::answersGarbage;
  EXPECT_FALSE(accessibility.isTrusted());
}

TEST_F(AtspiAccessibilityTest, LauncherThatStaysSilentIsLeftAfterTwoSeconds) {
  desktop.launcherManner = Manner::staysSilent;
  const auto taken = timeOf([this] { EXPECT_FALSE(accessibility.isTrusted()); });
  EXPECT_GE(taken, milliseconds(2000));
  EXPECT_LT(taken, milliseconds(3000));
}

TEST_F(AtspiAccessibilityTest, AccessibilityBusThatHangsMeansNoTrust) {
  desktop.bus().freeze();
  const auto taken = timeOf([this] { EXPECT_FALSE(accessibility.isTrusted()); });
  desktop.bus().thaw();
  EXPECT_LT(taken, milliseconds(2000));
}

// Passes everything on to the socket that is named, both ways.
constexpr const char* kBridge = R"(import os, select, socket, sys
bus = socket.socket(socket.AF_UNIX)
bus.connect(sys.argv[1])
while True:
    for source in select.select([0, bus.fileno()], [], [])[0]:
        data = os.read(source, 65536)
        if not data:
            sys.exit()
        os.write(bus.fileno() if source == 0 else 1, data)
)";

// The program leads to the accessibility bus: to use the address would mean trust.
TEST_F(AtspiAccessibilityTest, AddressThatWouldRunAProgramIsNotUsed) {
  std::string_view socket = desktop.bus().address();
  socket = takeUntil(socket, ',').substr(std::string_view("unix:path=").size());
  const TemporaryTree tree;
  const std::string program = "unixexec:path=/usr/bin/python3,argv1=" + tree.write("bridge.py", kBridge).string() +
                              ",argv2=" + std::string(socket);
  BusLoop loop;
  const BusPeer peer(loop, program);
  ASSERT_TRUE(succeeded(peer.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping")));
  for (const std::string& address :
       {program, "unix:path=/nowhere;" + program, std::string("tcp:host=localhost,port=1")}) {
    desktop.otherAddress = address;
    EXPECT_FALSE(accessibility.isTrusted()) << address;
  }
}

TEST_F(AtspiAccessibilityTest, AccessibilityBusThatIsGoneMeansNoTrust) {
  show({});
  const auto found = open();
  EXPECT_TRUE(accessibility.isTrusted());
  application.reset();
  desktop.bus().stop();
  EXPECT_FALSE(accessibility.isTrusted());
  EXPECT_TRUE(found->windows(5).empty());
}

TEST_F(AtspiAccessibilityTest, RequestForTrustHasLaterApplicationsShowThemselves) {
  accessibility.requestTrust();
  EXPECT_TRUE(desktop.enabled);
  accessibility.requestTrust();
  EXPECT_EQ(desktop.timesSet, 1);
}

TEST_F(AtspiAccessibilityTest, RequestForTrustWithoutALauncherOrABusEndsAtOnce) {
  const PrivateBus empty;
  EXPECT_LT(timeOf([&] { AtspiAccessibility(empty.address()).requestTrust(); }), milliseconds(1000));
  EXPECT_LT(timeOf([] { AtspiAccessibility("unix:path=/nowhere").requestTrust(); }), milliseconds(1000));
}

TEST_F(AtspiAccessibilityTest, RequestForTrustGivesUpOnASilentLauncher) {
  desktop.launcherManner = Manner::staysSilent;
  EXPECT_LT(timeOf([this] { accessibility.requestTrust(); }), milliseconds(5000));
  EXPECT_FALSE(desktop.enabled);
}

TEST_F(AtspiAccessibilityTest, ApplicationIsFoundByItsProcess) {
  show({});
  EXPECT_TRUE(open());
  runAs("/usr/bin/claude");
  EXPECT_TRUE(open());
}

TEST_F(AtspiAccessibilityTest, OtherProgramsWithTheSamePageAreNotTheApplication) {
  show({{.name = "Claude", .children = {word("Plan usage limits")}}});
  runAs("/usr/lib/chromium/chromium");
  EXPECT_FALSE(open());
}

TEST_F(AtspiAccessibilityTest, OtherIdentifiersAreNotKnown) {
  show({});
  EXPECT_FALSE(accessibility.application("com.example.other"));
  EXPECT_FALSE(accessibility.application(""));
}

TEST_F(AtspiAccessibilityTest, ApplicationThatShowsNothingRunsAllTheSame) {
  const auto found = open();
  ASSERT_TRUE(found);
  found->exposeContent({});
  EXPECT_TRUE(found->windows(5).empty());
  EXPECT_TRUE(desktop.enabled) << "for when it starts anew";
}

TEST_F(AtspiAccessibilityTest, ApplicationThatDoesNotRunIsAbsentAndNothingIsEnabled) {
  runAs("");
  EXPECT_FALSE(open());
  EXPECT_EQ(desktop.timesSet, 0);
}

TEST_F(AtspiAccessibilityTest, RegistryThatAnswersGarbageShowsNoApplication) {
  show({{.name = "a"}});
  desktop.registryManner = Manner::answersGarbage;
  const auto found = open();
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->windows(5).empty());
}

TEST_F(AtspiAccessibilityTest, RegistryThatStaysSilentIsLeftAfterASecond) {
  show({{.name = "a"}});
  desktop.registryManner = Manner::staysSilent;
  EXPECT_LT(timeOf([this] { EXPECT_TRUE(open()->windows(5).empty()); }), milliseconds(2000));
}

TEST_F(AtspiAccessibilityTest, EnablingIsDoneOnce) {
  show({});
  const auto found = open();
  found->exposeContent({});
  found->exposeContent({});
  EXPECT_TRUE(desktop.enabled);
  EXPECT_EQ(desktop.timesSet, 1);
}

TEST_F(AtspiAccessibilityTest, WhatIsEnabledAlreadyIsLeftAlone) {
  desktop.enabled = true;
  show({});
  open()->exposeContent({});
  EXPECT_EQ(desktop.timesSet, 0);
}

TEST_F(AtspiAccessibilityTest, AtMostAsManyChildrenAsAskedForComeAndThenAgain) {
  show({{.text = "\uFFFC\uFFFC\uFFFC", .children = {{.name = "a"}, {.name = "b"}, {.name = "c"}}}});
  const auto found = open();
  const auto window = std::move(found->windows(5)[0]);
  EXPECT_TRUE(window->children(0).empty());
  for (int round = 0; round < 2; ++round) {
    const auto children = window->children(2);
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[1]->title(), "b");
  }
}

TEST_F(AtspiAccessibilityTest, ParagraphOfSeveralTextsIsOneLine) {
  EXPECT_EQ(linesOf(paragraph("61% used", {word("61"), word("% used")})), Lines{"61% used"});
}

TEST_F(AtspiAccessibilityTest, ParagraphOfBoldAndPlainTextsIsOneLine) {
  EXPECT_EQ(linesOf(paragraph("\uFFFC\uFFFC \uFFFC", {strong("61"), strong("%", kSection), word(" "), strong("used")})),
            Lines{"61% used"});
}

TEST_F(AtspiAccessibilityTest, NestedBoldTextsAreOneLine) {
  FakeAtspiNode outer = strong("x");
  outer.text = "6\uFFFC";
  outer.children = {word("6"), strong("1")};
  EXPECT_EQ(linesOf(paragraph("\uFFFC% used", {outer, word("% used")})), Lines{"61% used"});
}

TEST_F(AtspiAccessibilityTest, BlocksStayLinesOfTheirOwn) {
  EXPECT_EQ(linesOf(paragraph("\uFFFC\uFFFC", {paragraph("All models", {word("All models")}),
                                               paragraph("61% used", {word("61"), word("% used")})})),
            (Lines{"All models", "61% used"}));
}

TEST_F(AtspiAccessibilityTest, LinkIsNoPartOfTheLineAroundIt) {
  FakeAtspiNode link = strong("Learn more", kLink);
  link.name = "Learn more";
  EXPECT_EQ(linesOf(paragraph("Resets in 2h\uFFFC", {word("Resets in 2h"), link})),
            (Lines{"Resets in 2h", "Learn more", "Learn more"}));
}

TEST_F(AtspiAccessibilityTest, ProgressBarEndsTheLine) {
  const FakeAtspiNode bar{.name = "Usage", .text = "", .attributes = {{"display", "inline"}}, .role = kSection};
  EXPECT_EQ(linesOf(paragraph("Current session\uFFFC61% used", {word("Current session"), bar, word("61% used")})),
            (Lines{"Current session", "Usage", "61% used"}));
}

TEST_F(AtspiAccessibilityTest, TextThatIsNotItsChildrensComesBesideThem) {
  EXPECT_EQ(linesOf({.text = "typed", .children = {{.name = "Clear"}}}), (Lines{"typed", "Clear"}));
}

TEST_F(AtspiAccessibilityTest, PlacesOfChildrenThatCannotBeFoundAreNoText) {
  EXPECT_EQ(linesOf({.text = "\uFFFC\uFFFC 7", .children = {{.name = "a"}}}), Lines{"a"});
}

TEST_F(AtspiAccessibilityTest, ElementsThatStandForNothingAreLeftOut) {
  show({{.name = "bare"}});
  application->asleep = true;
  const auto found = open();
  EXPECT_TRUE(found->windows(5)[0]->children(10).empty());
}

TEST_F(AtspiAccessibilityTest, SleepingEngineIsWokenAndItsPageWaitedFor) {
  show({{.name = "Claude",
         .children = {{.children = {paragraph("61% used", {word("61% used")})}, .role = kDocumentWeb}}}});
  application->asleep = true;
  application->emptyLooks = 3;
  const auto found = open();
  found->exposeContent({});
  EXPECT_FALSE(application->asleep);
  EXPECT_EQ(application->emptyLooks, 0);
  EXPECT_EQ(found->windows(5)[0]->children(10)[0]->children(10)[0]->value(), "61% used");
}

TEST_F(AtspiAccessibilityTest, PageThatStaysEmptyIsWaitedForThreeSeconds) {
  show({{.name = "Claude", .children = {{.role = kDocumentWeb}}}});
  application->asleep = true;
  const auto found = open();
  const auto taken = timeOf([&] { found->exposeContent({}); });
  EXPECT_GE(taken, milliseconds(3000));
  EXPECT_LT(taken, milliseconds(4000));
}

TEST_F(AtspiAccessibilityTest, PageThatNobodyWantsAnyMoreIsNotWaitedFor) {
  show({{.name = "Claude", .children = {{.role = kDocumentWeb}}}});
  application->asleep = true;
  application->emptyLooks = 3;
  const auto found = open();
  std::stop_source unwanted;
  application->onEmptyLook = [this, &unwanted] {
    if (application->emptyLooks == 0) unwanted.request_stop();
  };
  const auto taken = timeOf([&] { found->exposeContent(unwanted.get_token()); });
  EXPECT_EQ(application->emptyLooks, 0);
  EXPECT_LT(taken, milliseconds(3000));
}

TEST_F(AtspiAccessibilityTest, EngineThatIsAwakeIsNotWaitedFor) {
  show({{.name = "Claude", .children = {{.role = kDocumentWeb}}}});
  const auto found = open();
  EXPECT_LT(timeOf([&] { found->exposeContent({}); }), milliseconds(1000));
}

TEST_F(AtspiAccessibilityTest, StoppedApplicationHoldsEachCallForTheTimeout) {
  show({{.name = "Claude"}});
  const auto found = open(milliseconds(300));
  const auto window = std::move(found->windows(5)[0]);
  application->thread().freeze();
  const auto taken = timeOf([&] {
    EXPECT_EQ(window->title(), std::nullopt);
    EXPECT_EQ(window->description(), std::nullopt);
    EXPECT_EQ(window->value(), std::nullopt);
    EXPECT_TRUE(window->children(10).empty());
  });
  EXPECT_GE(taken, milliseconds(300));
  EXPECT_LT(taken, milliseconds(900));
}

TEST_F(AtspiAccessibilityTest, ApplicationStoppedBeforehandIsGivenUpAtOnce) {
  show({{.name = "Claude"}});
  application->thread().freeze();
  const auto taken = timeOf([this] {
    const auto found = open(milliseconds(300));
    found->exposeContent({});
    EXPECT_TRUE(found->windows(5).empty());
  });
  EXPECT_GE(taken, milliseconds(600));
  EXPECT_LT(taken, milliseconds(1500));
}

TEST_F(AtspiAccessibilityTest, ApplicationThatHangsAmidItsChildrenKeepsWhatItSaidBefore) {
  FakeAtspiNode window{.text = ""};
  for (int index = 0; index < 200; ++index) {
    window.children.push_back(paragraph("line", {word("line")}));
    *window.text += "\uFFFC";
  }
  show({std::move(window)});
  const auto found = open(milliseconds(300));
  const auto element = std::move(found->windows(5)[0]);
  application->silentAfter = 60;
  std::vector<std::unique_ptr<AccessibleElement>> children;
  EXPECT_LT(timeOf([&] { children = element->children(1000); }), milliseconds(1200));
  ASSERT_EQ(children.size(), 200U);
  EXPECT_EQ(children[0]->value(), "line");
  EXPECT_EQ(children[199]->value(), std::nullopt);
}

TEST_F(AtspiAccessibilityTest, ElementThatHadNoTimeToAnswerIsAskedAgain) {
  show({paragraph("\uFFFC\uFFFC", {paragraph("a", {word("a")}), paragraph("b", {word("b")})})});
  const auto found = open(milliseconds(300));
  const auto element = std::move(found->windows(5)[0]);
  application->silentAfter = application->calls + 6 + 2;
  const auto children = element->children(10);
  ASSERT_EQ(children.size(), 2U);
  application->silentAfter = -1;
  EXPECT_EQ(children[0]->value(), "a");
  EXPECT_EQ(children[1]->value(), "b");
}

TEST_F(AtspiAccessibilityTest, GarbageIsNoText) {
  show({{.name = "Claude", .children = {word("a")}}});
  const auto found = open();
  const auto window = std::move(found->windows(5)[0]);
  application->manner = Manner::answersGarbage;
  EXPECT_EQ(window->title(), std::nullopt);
  EXPECT_EQ(window->value(), std::nullopt);
  EXPECT_TRUE(window->children(10).empty());
  EXPECT_TRUE(found->windows(5).empty());
}

TEST_F(AtspiAccessibilityTest, ApplicationThatEndsMeanwhileTellsNothingMore) {
  show({{.name = "Claude", .children = {word("a")}}});
  const auto found = open();
  const auto window = std::move(found->windows(5)[0]);
  application->vanish();
  EXPECT_LT(timeOf([&] { EXPECT_EQ(window->title(), std::nullopt); }), milliseconds(5000));
  EXPECT_TRUE(found->windows(5).empty());
}

TEST_F(AtspiAccessibilityTest, TreeThatIsItsOwnChildIsBounded) {
  show({{.text = "\uFFFC", .children = {strong("a")}, .attributes = {{"display", "inline"}}, .role = kStatic}});
  application->makeEndless();
  const auto found = open(milliseconds(300));
  auto element = std::move(found->windows(5)[0]);
  application->calls = 0;
  EXPECT_EQ(element->value(), std::nullopt);
  EXPECT_LE(application->calls, 6 * 10) << "elements in the line are followed to a depth of eight";
  for (int level = 0; level < 40; ++level) {
    EXPECT_EQ(element->value(), std::nullopt);
    auto children = element->children(10);
    ASSERT_EQ(children.size(), 1U);
    element = std::move(children[0]);
  }
}

TEST_F(AtspiAccessibilityTest, HugeTreeIsHandedOutWithinTheTimeout) {
  FakeAtspiNode window{.text = ""};
  for (int index = 0; index < 20000; ++index) {
    window.children.push_back({.name = "row"});
    *window.text += "\uFFFC";
  }
  show({std::move(window)});
  const auto found = open(milliseconds(300));
  const auto element = std::move(found->windows(5)[0]);
  std::vector<std::unique_ptr<AccessibleElement>> children;
  EXPECT_LT(timeOf([&] { children = element->children(1500); }), milliseconds(2000));
  EXPECT_EQ(children.size(), 1500U);
}

}  // namespace
}  // namespace nimbo
