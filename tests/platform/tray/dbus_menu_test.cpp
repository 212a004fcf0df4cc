// SPDX-License-Identifier: MIT
#include "platform/linux/tray/dbus_menu.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/tray/panel_appearance.h"
#include "platform/linux/tray/sni_status_bar.h"
#include "support/fake_workspace.h"
#include "support/services/fake_tray_host.h"
#include "support/services/private_bus.h"

namespace nimbo {
namespace {

using Log = std::vector<std::string>;

/// An item with the program's menu, read through a tray host.
class DbusMenuTest : public ::testing::Test {
 protected:
  DbusMenuTest() : host(loop, bus.address()) {}

  StatusMenu menu() {
    const auto log = [this](const char* what) { return [this, what] { events.emplace_back(what); }; };
    StatusMenu result;
    result.title = "Nimbo";
    result.entries = {{MenuEntry::Kind::action, firstTitle, true, "", log("toggle")},
                      {MenuEntry::Kind::separator, "", true, "", nullptr},
                      {MenuEntry::Kind::action, "Settings…", settingsEnabled, ",", log("settings")},
                      {MenuEntry::Kind::action, "Check for Updates…", true, "", nullptr},
                      {MenuEntry::Kind::separator, "", true, "", nullptr},
                      {MenuEntry::Kind::action, "Quit Nimbo", true, "", [this] {
                         events.emplace_back("quit");
                         item.reset();
                       }}};
    return result;
  }

  StatusItemHandlers handlers() {
    StatusItemHandlers handlers;
    handlers.clicked = [this](const StatusClick& click) {
      events.emplace_back(click.anchor || click.alternate ? "odd click" : "clicked");
    };
    handlers.menuWillOpen = [this] {
      events.emplace_back("will open");
      return menu();
    };
    handlers.menuDidClose = [this] { events.emplace_back("did close"); };
    handlers.menuPreview = [this] { return menu(); };
    return handlers;
  }

  /// Shows the item and returns its bus name.
  std::string show(const std::string& desktop = "XFCE") {
    statusBar = std::make_unique<SniStatusBar>(loop.main(), SniStatusBar::SessionBus{session.get(), bus.address()},
                                               desktop, panel);
    item = statusBar->makeItem({"nimbo"}, {}, handlers());
    EXPECT_TRUE(host.waitForItems(1));
    return host.registered.at(0);
  }

  static Log labels(const FakeTrayHost::MenuItem& root) {
    Log labels;
    for (const auto& child : root.children) {
      const auto label = child.properties.find("label");
      labels.push_back(label == child.properties.end() ? child.properties.at("type") : label->second);
    }
    return labels;
  }

  std::vector<FakeTrayHost::Signal> menuSignals(const std::string& name) {
    auto signals = host.takeSignals(name);
    std::erase_if(signals, [](const auto& signal) { return signal.member != "LayoutUpdated"; });
    return signals;
  }

  static const Log kLabels;

  PrivateBus bus;
  BusLoop loop;
  SdBusConnection session{loop.main().event(), bus.address()};
  FakeTrayHost host;
  FakeWorkspace workspace;
  PlasmaColors plasma{loop.main(), {}};
  PanelAppearance panel{{nullptr, workspace, plasma}, ""};
  std::unique_ptr<SniStatusBar> statusBar;
  std::unique_ptr<StatusItem> item;
  std::string firstTitle = "Keep awake until stopped";
  bool settingsEnabled = true;
  Log events;
};

const Log DbusMenuTest::kLabels = {"Keep awake until stopped", "separator", "Settings…",
                                   "Check for Updates…",       "separator", "Quit Nimbo"};

TEST_F(DbusMenuTest, LayoutHoldsExactlyTheGivenEntries) {
  const auto layout = host.layout(show());
  EXPECT_GT(layout.revision, 0U);
  EXPECT_EQ(layout.root.id, 0);
  EXPECT_EQ(layout.root.properties.at("children-display"), "submenu");
  EXPECT_EQ(layout.root.properties.at("label"), "Nimbo");
  EXPECT_EQ(labels(layout.root), kLabels);
}

TEST_F(DbusMenuTest, EntriesCarryEnabledStateAndShortcut) {
  settingsEnabled = false;
  const auto layout = host.layout(show());
  const auto& settings = layout.root.children.at(2);
  EXPECT_EQ(settings.properties.at("shortcut"), "Control+,");
  EXPECT_EQ(settings.properties.at("enabled"), "false");
  EXPECT_EQ(layout.root.children.at(0).properties.at("enabled"), "true");
  EXPECT_FALSE(layout.root.children.at(0).properties.contains("shortcut"));
}

TEST_F(DbusMenuTest, UnderscoreInATitleIsNoMnemonic) {
  firstTitle = "a_b";
  EXPECT_EQ(host.layout(show()).root.children.at(0).properties.at("label"), "a__b");
}

TEST_F(DbusMenuTest, GnomeMenuOffersTheDashboardFirst) {
  const std::string name = show("ubuntu:GNOME");
  const auto layout = host.layout(name);
  ASSERT_EQ(layout.root.children.size(), 7U);
  EXPECT_EQ(labels(layout.root).front(), "Open Nimbo");
  EXPECT_TRUE(succeeded(host.menuEvent(name, layout.root.children.front().id, "clicked")));
  EXPECT_EQ(events, Log{"clicked"});
  host.menuEvent(name, layout.root.children.at(1).id, "clicked");
  EXPECT_EQ(events.back(), "toggle");
}

TEST_F(DbusMenuTest, ReadingAheadOpensNothing) {
  const std::string name = show();
  host.layout(name);
  host.aboutToShow(name);
  host.callMenu(name, "GetGroupProperties", [](sd_bus_message* call) {
    sd_bus_message_append(call, "ai", 0);
    FakeTrayHost::appendStrings(call, {});
  });
  EXPECT_EQ(events, Log{});
}

TEST_F(DbusMenuTest, OpeningAndClosingAreToldOnce) {
  const std::string name = show();
  EXPECT_TRUE(host.aboutToShow(name));
  host.menuEvent(name, 0, "opened");
  host.menuEvent(name, 0, "opened");
  host.layout(name);
  EXPECT_EQ(events, Log{"will open"});
  host.menuEvent(name, 0, "closed");
  host.menuEvent(name, 0, "closed");
  EXPECT_EQ(events, (Log{"will open", "did close"}));
}

TEST_F(DbusMenuTest, HostThatVanishesHasClosedItsMenu) {
  const std::string name = show();
  {
    const BusPeer panelProcess(loop, bus.address());
    panelProcess.call(name, "/MenuBar", "com.canonical.dbusmenu", "Event",
                      [](sd_bus_message* call) { sd_bus_message_append(call, "isvu", 0, "opened", "i", 0, 0U); });
    host.peer.settle(name);
    EXPECT_EQ(events, Log{"will open"});
  }
  EXPECT_TRUE(loop.runUntil([this] { return events.size() > 1; }));
  EXPECT_EQ(events, (Log{"will open", "did close"}));
}

TEST_F(DbusMenuTest, UnchangedLayoutKeepsItsRevisionAndSendsNothing) {
  const std::string name = show();
  const auto revision = host.layout(name).revision;
  EXPECT_FALSE(host.aboutToShow(name));
  host.menuEvent(name, 0, "opened");
  host.menuEvent(name, 0, "closed");
  EXPECT_EQ(host.layout(name).revision, revision);
  EXPECT_TRUE(menuSignals(name).empty());
}

TEST_F(DbusMenuTest, ChangedLayoutIsAnnouncedOnceWhenItIsAboutToShow) {
  const std::string name = show();
  const auto revision = host.layout(name).revision;
  firstTitle = "Stop awake session";
  EXPECT_TRUE(host.aboutToShow(name));
  host.menuEvent(name, 0, "opened");
  EXPECT_EQ(menuSignals(name).size(), 1U);
  const auto layout = host.layout(name);
  EXPECT_GT(layout.revision, revision);
  EXPECT_EQ(labels(layout.root).front(), "Stop awake session");
}

TEST_F(DbusMenuTest, ChangedLabelIsSentToHostsThatReadNoLabelTwice) {
  const std::string name = show();
  host.layout(name);
  host.takeSignals(name);
  firstTitle = "Stop awake session";
  host.layout(name);
  const auto signals = host.takeSignals(name);
  ASSERT_EQ(signals.size(), 1U);
  EXPECT_EQ(signals[0].member, "ItemsPropertiesUpdated");
  EXPECT_EQ(signals[0].arguments, (Log{"1", "enabled=true", "label=Stop awake session"}));
  EXPECT_FALSE(host.aboutToShow(name));
  EXPECT_TRUE(host.takeSignals(name).empty());
}

TEST_F(DbusMenuTest, ChangeIsAnnouncedToHostsThatOnlySayOpened) {
  const std::string name = show();
  host.layout(name);
  settingsEnabled = false;
  host.menuEvent(name, 0, "opened");
  EXPECT_EQ(menuSignals(name).size(), 1U);
}

TEST_F(DbusMenuTest, HostThatAnnouncesNothingReadsAFreshLayout) {
  const std::string name = show();
  host.layout(name);
  firstTitle = "Stop awake session";
  EXPECT_EQ(labels(host.layout(name).root).front(), "Stop awake session");
}

TEST_F(DbusMenuTest, OpenMenuDoesNotChangeUnderTheUser) {
  const std::string name = show();
  host.menuEvent(name, 0, "opened");
  firstTitle = "Stop awake session";
  EXPECT_EQ(labels(host.layout(name).root), kLabels);
}

TEST_F(DbusMenuTest, ClickRunsTheActionAfterTheMenuHasClosed) {
  const std::string name = show();
  host.menuEvent(name, 0, "opened");
  const auto layout = host.layout(name);
  EXPECT_TRUE(succeeded(host.menuEvent(name, layout.root.children.at(2).id, "clicked")));
  host.menuEvent(name, 0, "closed");
  EXPECT_EQ(events, (Log{"will open", "did close", "settings"}));
}

TEST_F(DbusMenuTest, ClickAfterTheMenuHasClosedRunsTheActionToo) {
  const std::string name = show();
  host.menuEvent(name, 0, "opened");
  host.menuEvent(name, 0, "closed");
  host.menuEvent(name, 1, "clicked");
  EXPECT_EQ(events, (Log{"will open", "did close", "toggle"}));
}

TEST_F(DbusMenuTest, DisabledEntryAndSeparatorDoNothing) {
  settingsEnabled = false;
  const std::string name = show();
  EXPECT_TRUE(succeeded(host.menuEvent(name, 3, "clicked")));
  EXPECT_TRUE(succeeded(host.menuEvent(name, 2, "clicked")));
  EXPECT_TRUE(succeeded(host.menuEvent(name, 4, "clicked")));
  EXPECT_EQ(events, Log{});
}

TEST_F(DbusMenuTest, HoveringAndUnknownEventsAreAccepted) {
  const std::string name = show();
  EXPECT_TRUE(succeeded(host.menuEvent(name, 1, "hovered")));
  EXPECT_TRUE(succeeded(host.menuEvent(name, 0, "x-vendor-thing")));
  EXPECT_EQ(events, Log{});
}

TEST_F(DbusMenuTest, ActionMayDestroyTheItemAndTheHostStillGetsItsReply) {
  const std::string name = show();
  EXPECT_TRUE(succeeded(host.menuEvent(name, 6, "clicked")));
  EXPECT_EQ(events, Log{"quit"});
  EXPECT_EQ(item, nullptr);
}

TEST_F(DbusMenuTest, EventGroupRunsAllAndNamesTheUnknown) {
  const std::string name = show();
  const BusMessage reply = host.callMenu(name, "EventGroup", [](sd_bus_message* call) {
    sd_bus_message_append(call, "a(isvu)", 3, 0, "opened", "i", 0, 0U, 99, "clicked", "s", "", 0U, 1, "clicked", "b", 1,
                          0U);
  });
  ASSERT_TRUE(succeeded(reply));
  const void* ids = nullptr;
  std::size_t bytes = 0;
  ASSERT_GT(sd_bus_message_read_array(reply.get(), 'i', &ids, &bytes), 0);
  ASSERT_EQ(bytes, sizeof(std::int32_t));
  EXPECT_EQ(*static_cast<const std::int32_t*>(ids), 99);
  EXPECT_EQ(events, (Log{"will open", "did close", "toggle"}));
}

TEST_F(DbusMenuTest, EventGroupOfOnlyUnknownItemsIsAnError) {
  const std::string name = show();
  EXPECT_TRUE(failed(host.callMenu(name, "EventGroup", [](sd_bus_message* call) {
    sd_bus_message_append(call, "a(isvu)", 1, 77, "clicked", "i", 0, 0U);
  })));
}

TEST_F(DbusMenuTest, AboutToShowGroupAnswersForEachItem) {
  const std::string name = show();
  const BusMessage reply = host.callMenu(name, "AboutToShowGroup",
                                         [](sd_bus_message* call) { sd_bus_message_append(call, "ai", 3, 0, 1, 42); });
  ASSERT_TRUE(succeeded(reply));
  const void* ids = nullptr;
  std::size_t bytes = 0;
  ASSERT_GT(sd_bus_message_read_array(reply.get(), 'i', &ids, &bytes), 0);
  ASSERT_EQ(bytes, sizeof(std::int32_t));
  EXPECT_EQ(*static_cast<const std::int32_t*>(ids), 0);
  ASSERT_GT(sd_bus_message_read_array(reply.get(), 'i', &ids, &bytes), 0);
  ASSERT_EQ(bytes, sizeof(std::int32_t));
  EXPECT_EQ(*static_cast<const std::int32_t*>(ids), 42);
}

TEST_F(DbusMenuTest, GroupPropertiesAreFilteredByItemAndName) {
  const std::string name = show();
  const BusMessage reply = host.callMenu(name, "GetGroupProperties", [](sd_bus_message* call) {
    sd_bus_message_append(call, "ai", 3, 1, 3, 1000);
    FakeTrayHost::appendStrings(call, {"label"});
  });
  ASSERT_TRUE(succeeded(reply));
  std::vector<std::pair<int, std::map<std::string, std::string>>> items;
  sd_bus_message_enter_container(reply.get(), 'a', "(ia{sv})");
  while (sd_bus_message_enter_container(reply.get(), 'r', "ia{sv}") > 0) {
    int id = 0;
    sd_bus_message_read(reply.get(), "i", &id);
    items.emplace_back(id, FakeTrayHost::readProperties(reply.get()));
    sd_bus_message_exit_container(reply.get());
  }
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items[0].first, 1);
  EXPECT_EQ(items[1].second, (std::map<std::string, std::string>{{"label", "Settings…"}}));
}

TEST_F(DbusMenuTest, SinglePropertyCanBeAsked) {
  const std::string name = show();
  const auto get = [&](int id, const char* property) {
    return host.callMenu(name, "GetProperty",
                         [id, property](sd_bus_message* call) { sd_bus_message_append(call, "is", id, property); });
  };
  const BusMessage label = get(6, "label");
  ASSERT_TRUE(succeeded(label));
  EXPECT_EQ(FakeTrayHost::variantText(label.get()), "Quit Nimbo");
  EXPECT_TRUE(failed(get(6, "shortcut")));
  EXPECT_TRUE(failed(get(-1, "label")));
  EXPECT_TRUE(failed(get(7, "label")));
}

TEST_F(DbusMenuTest, LayoutOfOneEntryOrOfNoDepthHasNoChildren) {
  const std::string name = show();
  const auto leaf = host.layout(name, 3);
  EXPECT_EQ(leaf.root.id, 3);
  EXPECT_EQ(leaf.root.properties.at("label"), "Settings…");
  EXPECT_TRUE(leaf.root.children.empty());
  EXPECT_TRUE(host.layout(name, 0, 0).root.children.empty());
  EXPECT_EQ(host.layout(name, 0, 1).root.children.size(), 6U);
}

TEST_F(DbusMenuTest, LayoutHoldsOnlyTheNamedProperties) {
  const auto layout = host.layout(show(), 0, -1, {"label"});
  EXPECT_FALSE(layout.root.properties.contains("children-display"));
  EXPECT_FALSE(layout.root.children.at(0).properties.contains("enabled"));
  EXPECT_EQ(layout.root.children.at(0).properties.at("label"), "Keep awake until stopped");
}

TEST_F(DbusMenuTest, RubbishGetsErrorsAndTheMenuLivesOn) {
  const std::string name = show();
  for (const std::int32_t id : {-1, 7, INT32_MAX, INT32_MIN}) {
    EXPECT_TRUE(failed(host.getLayout(name, id, -1))) << id;
    EXPECT_TRUE(failed(host.menuEvent(name, id, "clicked"))) << id;
    EXPECT_TRUE(failed(host.callMenu(name, "AboutToShow", [id](sd_bus_message* call) {
      sd_bus_message_append(call, "i", id);
    }))) << id;
  }
  EXPECT_TRUE(failed(host.callMenu(name, "GetLayout")));
  EXPECT_TRUE(
      failed(host.callMenu(name, "Event", [](sd_bus_message* call) { sd_bus_message_append(call, "s", "clicked"); })));
  EXPECT_TRUE(failed(host.callMenu(name, "AboutToShowGroup",
                                   [](sd_bus_message* call) { sd_bus_message_append(call, "as", 1, "0"); })));
  EXPECT_EQ(events, Log{});
  EXPECT_EQ(labels(host.layout(name).root), kLabels);
}

TEST_F(DbusMenuTest, InterfacePropertiesAreThere) {
  const std::string name = show();
  const BusMessage reply =
      host.peer.call(name, "/MenuBar", "org.freedesktop.DBus.Properties", "GetAll",
                     [](sd_bus_message* call) { sd_bus_message_append(call, "s", "com.canonical.dbusmenu"); });
  ASSERT_TRUE(succeeded(reply));
  EXPECT_EQ(FakeTrayHost::readProperties(reply.get()),
            (std::map<std::string, std::string>{
                {"Version", "3"}, {"TextDirection", "ltr"}, {"Status", "normal"}, {"IconThemePath", "(as)"}}));
}

}  // namespace
}  // namespace nimbo
