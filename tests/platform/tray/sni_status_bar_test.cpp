// SPDX-License-Identifier: MIT
#include "platform/linux/tray/sni_status_bar.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/tray/panel_appearance.h"
#include "support/fake_workspace.h"
#include "support/services/fake_tray_host.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using Signals = std::vector<FakeTrayHost::Signal>;

TemplateImage barImage() {
  TemplateImage image;
  image.shapes.push_back({{{1, 6, 16, 6}, 2}, 0.25, std::nullopt, std::nullopt});
  return image;
}

StatusItemContent content(std::optional<std::string> title = std::nullopt) {
  return {std::move(title), barImage(), "Keep Awake is on", "Keep Awake"};
}

class SniStatusBarTest : public ::testing::Test {
 protected:
  SniStatusBar& makeBar(const std::string& desktop = "") {
    statusBar = std::make_unique<SniStatusBar>(loop.main(), SniStatusBar::SessionBus{session.get(), bus.address()},
                                               desktop, panel);
    return *statusBar;
  }

  StatusItemHandlers recordClicks() {
    StatusItemHandlers handlers;
    handlers.clicked = [this](const StatusClick& click) { clicks.push_back(click); };
    return handlers;
  }

  /// Makes an item, lets the tray register it and returns its bus name.
  std::string shown(StatusItemContent what = content(), const std::string& desktop = "") {
    if (!host) host.emplace(loop, bus.address());
    item = makeBar(desktop).makeItem({"nimbo-awake"}, std::move(what), recordClicks());
    EXPECT_TRUE(host->waitForItems(1));
    return host->registered.at(0);
  }

  BusMessage click(const std::string& name, const char* member, int x, int y) {
    return host->callItem(name, member, [x, y](sd_bus_message* call) { sd_bus_message_append(call, "ii", x, y); });
  }

  /// Each with what it is open on.
  static std::map<int, std::string> descriptors() {
    std::map<int, std::string> open;
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      open[std::stoi(entry.path().filename())] = std::filesystem::read_symlink(entry, gone);
    }
    return open;
  }

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.main().event(), bus.address()};
  FakeWorkspace workspace;
  PlasmaColors plasma{loop.main(), {}};
  PanelAppearance panel{{nullptr, workspace, plasma}, "MATE"};
  std::optional<FakeTrayHost> host;
  std::unique_ptr<SniStatusBar> statusBar;
  std::unique_ptr<StatusItem> item;
  std::vector<StatusClick> clicks;
};

TEST_F(SniStatusBarTest, ItemWhoseConnectionEndsComesBack) {
  makeBar();
  host.emplace(loop, bus.address());
  auto before = descriptors();
  shown();
  for (const auto& [number, file] : descriptors()) {
    if (before[number] != file) ::shutdown(number, SHUT_RDWR);
  }
  ASSERT_TRUE(host->waitForItems(2));
  EXPECT_EQ(host->text(host->registered.at(1), "Id"), "nimbo-awake");
  ASSERT_TRUE(click(host->registered.at(1), "Activate", 1300, 10));
  EXPECT_EQ(clicks.size(), 1U);
}

TEST_F(SniStatusBarTest, ItemThatCannotConnectAtFirstComesLater) {
  host.emplace(loop, bus.address());
  makeBar();
  // Once before, because the sanitizer's first look at an object takes a descriptor.
  const SdBusConnection nowhere(nullptr, "unix:path=/nowhere");
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{3, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  item = statusBar->makeItem({"nimbo-awake"}, content(), {});
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_TRUE(host->waitForItems(1));
}

TEST_F(SniStatusBarTest, TwoItemsAreTwoConnections) {
  shown();
  const auto second = statusBar->makeItem({"nimbo-memory"}, content(), {});
  ASSERT_TRUE(host->waitForItems(2));
  EXPECT_NE(host->registered.at(0), host->registered.at(1));
  EXPECT_EQ(host->text(host->registered.at(1), "Id"), "nimbo-memory");
}

TEST_F(SniStatusBarTest, TrayThatRestartsGetsTheItemOnceEachTime) {
  const std::string name = shown();
  for (int restart = 0; restart < 3; ++restart) {
    host.reset();
    host.emplace(loop, bus.address());
    ASSERT_TRUE(host->waitForItems(1));
    host->peer.settle(name);
    EXPECT_EQ(host->registered, std::vector<std::string>{name});
  }
}

TEST_F(SniStatusBarTest, DestroyedItemLeavesNothingOnTheBus) {
  const std::string name = shown();
  item.reset();
  EXPECT_TRUE(host->peer.waitForName(name, false));
}

TEST_F(SniStatusBarTest, PropertiesSuitEveryHost) {
  const std::string name = shown();
  EXPECT_EQ(host->text(name, "Category"), "SystemServices");
  EXPECT_EQ(host->text(name, "Id"), "nimbo-awake");
  EXPECT_EQ(host->text(name, "Title"), "Keep Awake");
  EXPECT_EQ(host->text(name, "Status"), "Active");
  EXPECT_EQ(host->text(name, "WindowId"), "0");
  EXPECT_EQ(host->text(name, "IconName"), "");
  EXPECT_EQ(host->text(name, "IconAccessibleDesc"), "Keep Awake");
  EXPECT_EQ(host->text(name, "ItemIsMenu"), "false");
  EXPECT_EQ(host->text(name, "Menu"), "/MenuBar");
}

TEST_F(SniStatusBarTest, ItemWithoutAccessibleNameIsTitledAfterTheProgram) {
  StatusItemContent nameless = content();
  nameless.accessibleName.clear();
  EXPECT_EQ(host->text(shown(nameless), "Title"), "Nimbo");
}

TEST_F(SniStatusBarTest, HostThatSortsFindsThePlacesInWhatItSortsBy) {
  struct Named {
    std::string identifier, title, accessibleName;
    bool operator==(const Named&) const = default;
  };
  const auto itemAt = [this](int place, const std::string& desktop) {
    item.reset();
    host.reset();
    host.emplace(loop, bus.address());
    item = makeBar(desktop).makeItem({"nimbo-awake", place, "-awake-ai-memory"}, content(), {});
    EXPECT_TRUE(host->waitForItems(1));
    const std::string name = host->registered.at(0);
    return Named{host->text(name, "Id"), host->text(name, "Title"), host->text(name, "IconAccessibleDesc")};
  };
  EXPECT_EQ(itemAt(0, "MATE"), (Named{"nimbo-1-awake", "Keep Awake", "Keep Awake"}));
  EXPECT_EQ(itemAt(2, "MATE"), (Named{"nimbo-3-awake", "Keep Awake", "Keep Awake"}));
  EXPECT_EQ(itemAt(0, "KDE"), (Named{"nimbo-awake", "   Keep Awake", "Keep Awake"}));
  EXPECT_EQ(itemAt(2, "X-Cinnamon"), (Named{"nimbo-awake", " Keep Awake", "Keep Awake"}));
  EXPECT_EQ(itemAt(2, "XFCE"), (Named{"nimbo-awake-awake-ai-memory", "", ""}));
  EXPECT_EQ(itemAt(2, "LXQt"), (Named{"nimbo-awake", "Keep Awake", "Keep Awake"}));
}

TEST_F(SniStatusBarTest, LabelIsThereForAnItemWithATitle) {
  const std::string name = shown(content("70%"), "MATE");
  EXPECT_TRUE(statusBar->showsTitles());
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), "70%");
  EXPECT_EQ(host->text(name, "XAyatanaLabelGuide"), "70%");
}

TEST_F(SniStatusBarTest, LabelIsMissingForAnItemWithoutATitle) {
  const std::string name = shown();
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), "(none)");
  const auto names = host->propertyNames(name);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
            (std::set<std::string>{"Category", "Id", "Title", "Status", "WindowId", "IconName", "IconPixmap",
                                   "IconAccessibleDesc", "ToolTip", "ItemIsMenu", "Menu"}));
}

TEST_F(SniStatusBarTest, LabelIsMissingWhereTheHostShowsNone) {
  EXPECT_EQ(host->text(shown(content("70%")), "XAyatanaLabel"), "(none)");
  EXPECT_FALSE(statusBar->showsTitles());
}

TEST_F(SniStatusBarTest, TitleThatIsEmptyForNowIsABlankLabelThatHidesNothing) {
  const std::string name = shown(content(""), "MATE");
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), " ");
  item->setContent(content("70%"));
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), "70%");
  item->setContent(content());
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), " ");
}

TEST_F(SniStatusBarTest, PixmapsComeInAllPanelSizesInNearBlackOnALightPanel) {
  const auto pixmaps = host->pixmaps(shown());
  std::vector<int> sides;
  for (const auto& pixmap : pixmaps) {
    sides.push_back(pixmap.width);
    EXPECT_EQ(pixmap.width, pixmap.height);
    ASSERT_EQ(pixmap.bytes.size(), static_cast<std::size_t>(pixmap.width * pixmap.height * 4));
    // The middle of the bar: a quarter opaque, alpha first.
    const std::size_t middle = 4 * static_cast<std::size_t>(pixmap.height / 2 * pixmap.width + pixmap.width / 2);
    const std::vector<std::uint8_t> pixel(pixmap.bytes.begin() + static_cast<std::ptrdiff_t>(middle),
                                          pixmap.bytes.begin() + static_cast<std::ptrdiff_t>(middle) + 4);
    EXPECT_EQ(pixel, (std::vector<std::uint8_t>{64, 0x26, 0x26, 0x26}));
    EXPECT_EQ(pixmap.bytes[0], 0);
  }
  EXPECT_EQ(sides, (std::vector<int>{16, 22, 24, 32, 44, 48, 64}));
}

TEST_F(SniStatusBarTest, PanelThatTurnsDarkGetsNearWhiteIcons) {
  const std::string name = shown();
  host->takeSignals(name);
  workspace.setAppearance(Appearance::dark);
  EXPECT_EQ(host->takeSignals(name), (Signals{{"NewIcon", {}}}));
  const auto pixmaps = host->pixmaps(name);
  ASSERT_FALSE(pixmaps.empty());
  EXPECT_EQ(pixmaps[0].bytes.at(4 * (8 * 16 + 8) + 1), 0xf2);
}

TEST_F(SniStatusBarTest, NothingIsSignalledWhenNothingChanges) {
  const std::string name = shown(content("70%"));
  host->takeSignals(name);
  for (int turn = 0; turn < 5; ++turn) item->setContent(content("70%"));
  item->setHighlighted(false);
  EXPECT_EQ(host->takeSignals(name), Signals{});
}

TEST_F(SniStatusBarTest, ItemOfTheOpenDashboardHasAGroundUnderItsPicture) {
  const std::string name = shown();
  const auto corner = [&] { return host->pixmaps(name).at(1).bytes.at(4 * (22 * 11)); };  // left edge, half way down
  EXPECT_EQ(corner(), 0);
  host->takeSignals(name);
  item->setHighlighted(true);
  EXPECT_EQ(host->takeSignals(name), (Signals{{"NewIcon", {}}}));
  EXPECT_EQ(corner(), 51);
  item->setHighlighted(false);
  EXPECT_EQ(corner(), 0);
}

TEST_F(SniStatusBarTest, ChangedImageIsSignalledAlone) {
  const std::string name = shown(content("70%"));
  host->takeSignals(name);
  StatusItemContent changed = content("70%");
  changed.image.shapes[0].alpha = 1;
  item->setContent(changed);
  EXPECT_EQ(host->takeSignals(name), (Signals{{"NewIcon", {}}}));
}

TEST_F(SniStatusBarTest, ChangedToolTipIsSignalledAlone) {
  const std::string name = shown(content("70%"));
  host->takeSignals(name);
  StatusItemContent changed = content("70%");
  changed.toolTip = "Keep Awake is off";
  item->setContent(changed);
  EXPECT_EQ(host->takeSignals(name), (Signals{{"NewToolTip", {}}, {"PropertiesChanged", {"ToolTip"}}}));
  EXPECT_EQ(host->toolTip(name).title, "Keep Awake is off");
}

TEST_F(SniStatusBarTest, ChangedTitleIsSignalledAsALabel) {
  const std::string name = shown(content("70%"), "MATE");
  host->takeSignals(name);
  item->setContent(content("71%"));
  EXPECT_EQ(host->takeSignals(name), (Signals{{"XAyatanaNewLabel", {"71%", "71%"}},
                                              {"PropertiesChanged", {"XAyatanaLabel", "XAyatanaLabelGuide"}}}));
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), "71%");
}

TEST_F(SniStatusBarTest, ChangedAccessibleNameIsSignalledAsATitle) {
  const std::string name = shown();
  host->takeSignals(name);
  StatusItemContent changed = content();
  changed.accessibleName = "Keep Awake, on";
  item->setContent(changed);
  EXPECT_EQ(host->takeSignals(name),
            (Signals{{"NewTitle", {}}, {"PropertiesChanged", {"IconAccessibleDesc", "Title"}}}));
}

TEST_F(SniStatusBarTest, NothingIsNamedWhereTheNameWouldBeInTheToolTip) {
  const std::string name = shown(content(), "XFCE");
  EXPECT_EQ(host->text(name, "Title"), "");
  EXPECT_EQ(host->text(name, "IconAccessibleDesc"), "");
  host->takeSignals(name);
  StatusItemContent changed = content();
  changed.accessibleName = "Keep Awake, on";
  item->setContent(changed);
  EXPECT_EQ(host->takeSignals(name), Signals{});
}

TEST_F(SniStatusBarTest, EverythingChangedAtOnceIsOneBurst) {
  const std::string name = shown(content("70%"), "MATE");
  host->takeSignals(name);
  item->setContent({"71%", {}, "other", "Other"});
  const auto signals = host->takeSignals(name);
  ASSERT_EQ(signals.size(), 5U);
  EXPECT_EQ(signals.back().member, "PropertiesChanged");
  EXPECT_EQ(signals.back().arguments.size(), 5U);
}

TEST_F(SniStatusBarTest, ToolTipIsSplitAndEscapedWhereHostsParseTheTitle) {
  StatusItemContent several = content();
  several.toolTip = "AI usage & <more>\n\nOpenAI & <b>Codex</b>\nWeekly: 5% used";
  const auto toolTip = host->toolTip(shown(several));
  EXPECT_EQ(toolTip.icon, "");
  EXPECT_EQ(toolTip.title, "AI usage &amp; &lt;more&gt;");
  EXPECT_EQ(toolTip.subtitle, "OpenAI &amp; &lt;b&gt;Codex&lt;/b&gt;\nWeekly: 5% used");
}

TEST_F(SniStatusBarTest, ToolTipTitleStaysAsItIsWhereHostsShowItPlain) {
  StatusItemContent compact = content();
  compact.toolTip = "Nimbo · Resources, AI usage & Keep Awake";
  EXPECT_EQ(host->toolTip(shown(compact, "XFCE")).title, "Nimbo · Resources, AI usage & Keep Awake");
}

TEST_F(SniStatusBarTest, TextThatIsNotUtf8IsRepairedInsteadOfLost) {
  StatusItemContent broken = content("7\xff");
  broken.toolTip = "a\xc3";
  broken.accessibleName = "\x80";
  const std::string name = shown(broken, "MATE");
  EXPECT_EQ(host->text(name, "XAyatanaLabel"), "7\uFFFD");
  EXPECT_EQ(host->toolTip(name).title, "a\uFFFD");
  EXPECT_EQ(host->text(name, "Title"), "\uFFFD");
}

TEST_F(SniStatusBarTest, ActivateClicksWithAnAnchorAroundThePoint) {
  EXPECT_TRUE(succeeded(click(shown(), "Activate", 1200, 12)));
  ASSERT_EQ(clicks.size(), 1U);
  EXPECT_FALSE(clicks[0].alternate);
  EXPECT_EQ(clicks[0].anchor, (Rect{1188, 0, 24, 24}));
}

TEST_F(SniStatusBarTest, MiddleClickIsTheAlternateClick) {
  EXPECT_TRUE(succeeded(click(shown(), "SecondaryActivate", 5, 700)));
  ASSERT_EQ(clicks.size(), 1U);
  EXPECT_TRUE(clicks[0].alternate);
  EXPECT_EQ(clicks[0].anchor, (Rect{-7, 688, 24, 24}));
}

TEST_F(SniStatusBarTest, ImpossiblePointsGiveNoAnchor) {
  const std::string name = shown();
  const std::pair<int, int> points[] = {{0, 0}, {-1, -1}, {-5, 0}, {INT32_MIN, 10}, {10, INT32_MAX}, {40000, 3}};
  for (const auto& [x, y] : points) click(name, "Activate", x, y);
  ASSERT_EQ(clicks.size(), 6U);
  for (const StatusClick& each : clicks) EXPECT_EQ(each.anchor, std::nullopt);
}

TEST_F(SniStatusBarTest, PointLeftOfTheMainScreenIsPossible) {
  click(shown(), "Activate", -300, 20);
  ASSERT_EQ(clicks.size(), 1U);
  EXPECT_EQ(clicks[0].anchor, (Rect{-312, 8, 24, 24}));
}

TEST_F(SniStatusBarTest, HostWithoutMenusOpensTheDashboardInstead) {
  EXPECT_TRUE(succeeded(click(shown(), "ContextMenu", 1200, 12)));
  ASSERT_EQ(clicks.size(), 1U);
  EXPECT_FALSE(clicks[0].alternate);
  EXPECT_EQ(clicks[0].anchor, (Rect{1188, 0, 24, 24}));
}

TEST_F(SniStatusBarTest, ScrollingDoesNothingAndNoTokenIsTaken) {
  const std::string name = shown();
  EXPECT_TRUE(succeeded(host->callItem(
      name, "Scroll", [](sd_bus_message* call) { sd_bus_message_append(call, "is", 120, "vertical"); })));
  EXPECT_TRUE(failed(host->callItem(name, "ProvideXdgActivationToken",
                                    [](sd_bus_message* call) { sd_bus_message_append(call, "s", "token"); })));
  EXPECT_TRUE(clicks.empty());
}

TEST_F(SniStatusBarTest, RubbishCallsGetErrorsAndTheItemLivesOn) {
  const std::string name = shown();
  EXPECT_TRUE(failed(host->callItem(name, "Activate")));
  EXPECT_TRUE(failed(host->callItem(name, "Activate",
                                    [](sd_bus_message* call) { sd_bus_message_append(call, "ss", "here", "there"); })));
  EXPECT_TRUE(failed(host->callItem(name, "Explode")));
  EXPECT_TRUE(failed(host->property(name, "NoSuchProperty")));
  EXPECT_TRUE(clicks.empty());
  EXPECT_EQ(host->text(name, "Status"), "Active");
}

TEST_F(SniStatusBarTest, HandlerMayDestroyTheItem) {
  host.emplace(loop, bus.address());
  StatusItemHandlers handlers;
  handlers.clicked = [this](const StatusClick&) { item.reset(); };
  item = makeBar().makeItem({"nimbo"}, content(), std::move(handlers));
  ASSERT_TRUE(host->waitForItems(1));
  EXPECT_TRUE(succeeded(click(host->registered.at(0), "Activate", 10, 10)));
  EXPECT_EQ(item, nullptr);
}

TEST_F(SniStatusBarTest, SwaysOwnBarIsToldFromOthersBeforeAnItemIsThere) {
  host.emplace(loop, bus.address());
  std::optional<BusPeer> other(std::in_place, loop, bus.address());
  other->own("org.freedesktop.StatusNotifierWatcher");
  makeBar("sway");
  std::vector<ItemOrder> orders;
  const auto changed = statusBar->observeItemOrder([&] {
    EXPECT_TRUE(host->registered.empty());
    orders.push_back(statusBar->itemOrder());
  });
  item = statusBar->makeItem({"nimbo-awake"}, content(), {});
  EXPECT_TRUE(host->waitForItems(1));
  EXPECT_EQ(orders, std::vector{ItemOrder::newestFirst});
  host->registered.clear();
  other.reset();
  EXPECT_TRUE(loop.runUntil([&] { return orders.size() > 1; }));
  EXPECT_EQ(orders.back(), ItemOrder::oldestFirst);
}

TEST_F(SniStatusBarTest, WithoutABusItemsExistAndStaySilent) {
  SniStatusBar silent(loop.main(), {nullptr, "unix:path=/nonexistent/bus"}, "", panel);
  const auto lonely = silent.makeItem({"nimbo"}, content(), {});
  lonely->setContent(content("70%"));
  workspace.setAppearance(Appearance::dark);
  EXPECT_NE(lonely, nullptr);
}

TEST_F(SniStatusBarTest, BusThatGoesAwayLeavesTheItemHarmless) {
  shown();
  bus.stop();
  EXPECT_TRUE(loop.runUntil([&] { return sd_bus_is_open(host->peer.bus()) <= 0; }));
  item->setContent(content("71%"));
  item.reset();
}

}  // namespace
}  // namespace nimbo
