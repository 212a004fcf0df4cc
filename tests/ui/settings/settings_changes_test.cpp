// SPDX-License-Identifier: MIT
#include <map>

#include "ui/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

using Kind = SettingsChange::Kind;
using Keys = std::vector<std::string>;
using Values = std::map<std::string, bool>;

// Check boxes.

struct CheckCase {
  const char* identifier;
  const char* title;
  Values before;  ///< stored, with the box off
  Keys writtenOn;
  Values afterOn;
  Keys writtenOff;
  Values afterOff;
  Kind kind;
};

class SettingsCheckTest : public SettingsWindowTest, public testing::WithParamInterface<CheckCase> {
 protected:
  SettingsCheckTest() {
    for (const auto& [key, on] : GetParam().before) store(key, on);
  }

  /// Clicks once, and checks everything that is to come of it.
  void expectClick(bool on, const Keys& written, const Values& after) {
    const auto* const identifier = GetParam().identifier;
    const auto kind = GetParam().kind;
    const int rendersBefore = window.renders();
    click(identifier);
    EXPECT_EQ(takeWrittenKeys(), written);
    for (const auto& [key, value] : after) EXPECT_EQ(stored(key), value) << key;
    EXPECT_EQ(takeChanges(), (std::vector{Change{kind, on && kind == Kind::display}}));
    EXPECT_GT(window.renders(), rendersBefore);
    EXPECT_EQ(check(identifier).on, on);
  }
};

TEST_P(SettingsCheckTest, TickingAndUntickingWritesSendsAndShows) {
  const auto& parameters = GetParam();
  EXPECT_EQ(check(parameters.identifier).title, parameters.title);
  ASSERT_FALSE(check(parameters.identifier).on);
  expectClick(true, parameters.writtenOn, parameters.afterOn);
  expectClick(false, parameters.writtenOff, parameters.afterOff);
}

CheckCase plain(const char* identifier, const char* title, const char* key, Kind kind) {
  return {identifier, title, {{key, false}}, {key}, {{key, true}}, {key}, {{key, false}}, kind};
}

INSTANTIATE_TEST_SUITE_P(
    EveryBox, SettingsCheckTest,
    testing::Values(plain("memory", "Memory", "monitorMemory", Kind::monitors),
                    plain("cpu", "CPU", "monitorCPU", Kind::monitors),
                    plain("temperature", "CPU temperature", "monitorTemperature", Kind::monitors),
                    CheckCase{"compact",
                              "Single app icon (hide all readouts)",
                              {{"compactMenuBar", false}, {"menuRotation", true}},
                              {"compactMenuBar", "menuRotation"},
                              {{"compactMenuBar", true}, {"menuRotation", false}},
                              {"compactMenuBar"},
                              {{"compactMenuBar", false}, {"menuRotation", false}},
                              Kind::presentation},
                    CheckCase{"menuRotation",
                              "Rotate selected readouts in one icon",
                              {{"menuRotation", false}, {"compactMenuBar", true}},
                              {"menuRotation", "compactMenuBar"},
                              {{"menuRotation", true}, {"compactMenuBar", false}},
                              {"menuRotation"},
                              {{"menuRotation", false}, {"compactMenuBar", false}},
                              Kind::presentation},
                    CheckCase{"menuAI",
                              "AI",
                              {{"menuAI", false}, {"compactMenuBar", true}},
                              {"menuAI", "compactMenuBar"},
                              {{"menuAI", true}, {"compactMenuBar", false}},
                              {"menuAI"},
                              {{"menuAI", false}, {"compactMenuBar", false}},
                              Kind::presentation},
                    CheckCase{"menuMemory",
                              "Mem",
                              {{"menuMemory", false}, {"compactMenuBar", true}, {"monitorMemory", false}},
                              {"menuMemory", "compactMenuBar", "monitorMemory"},
                              {{"menuMemory", true}, {"compactMenuBar", false}, {"monitorMemory", true}},
                              {"menuMemory"},
                              {{"menuMemory", false}, {"compactMenuBar", false}, {"monitorMemory", true}},
                              Kind::presentation},
                    CheckCase{"menuAwake",
                              "Awake",
                              {{"menuAwake", false}, {"compactMenuBar", true}},
                              {"menuAwake", "compactMenuBar"},
                              {{"menuAwake", true}, {"compactMenuBar", false}},
                              {"menuAwake"},
                              {{"menuAwake", false}, {"compactMenuBar", false}},
                              Kind::presentation},
                    plain("display", "Keep display on too", "awakeDisplayOn", Kind::display),
                    plain("power", "Only while connected to power", "awakeOnlyOnPower", Kind::awakeRules),
                    plain("codex", "OpenAI · Codex", "usage.codex", Kind::usage),
                    plain("claude", "Anthropic · Claude", "usage.claude", Kind::usage)),
    [](const auto& instance) { return std::string(instance.param.identifier); });

using SettingsChecks = SettingsWindowTest;

TEST_F(SettingsChecks, TakingACategoryAwayLeavesSingleIconModeToo) {
  for (const auto& [identifier, key] :
       {std::pair{"menuAI", "menuAI"}, {"menuMemory", "menuMemory"}, {"menuAwake", "menuAwake"}}) {
    store(key, true);
    store("compactMenuBar", true);
    click(identifier);
    EXPECT_EQ(takeWrittenKeys(), (Keys{key, "compactMenuBar"}));
    EXPECT_FALSE(check("compact").on) << identifier;
  }
}

// Pop-ups.

struct Item {
  const char* title;
  nlohmann::json stored;
};
struct ChoiceCase {
  const char* identifier;
  const char* label;
  const char* key;
  std::vector<Item> items;
  Kind kind;
};

class SettingsChoiceTest : public SettingsWindowTest, public testing::WithParamInterface<ChoiceCase> {};

TEST_P(SettingsChoiceTest, EveryItemWritesSendsAndShows) {
  const auto& [identifier, label, key, items, kind] = GetParam();
  EXPECT_EQ(choice(identifier).accessibleName, label);
  EXPECT_TRUE(shows(label));
  ASSERT_EQ(choice(identifier).items.size(), items.size());
  for (std::size_t step = items.size(); step-- > 0;) {
    const auto& item = items[step];
    EXPECT_EQ(choice(identifier).items[step], item.title);
    choose(identifier, step);
    EXPECT_EQ(stored(key), item.stored) << item.title;
    EXPECT_EQ(chosenItem(identifier), item.title);
    EXPECT_EQ(takeChanges(), std::vector{Change{kind}});
    EXPECT_EQ(takeWrittenKeys(), Keys{key});
  }
}

TEST_P(SettingsChoiceTest, ItemsThatAreNotThereChangeNothing) {
  const auto selected = choice(GetParam().identifier).selected;
  controller.handle(chosen(GetParam().identifier, GetParam().items.size()));
  EXPECT_EQ(takeWrittenKeys(), Keys{});
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
  EXPECT_EQ(choice(GetParam().identifier).selected, selected);
}

INSTANTIATE_TEST_SUITE_P(
    EveryPopUp, SettingsChoiceTest,
    testing::Values(
        ChoiceCase{"menuRotationInterval",
                   "Rotate every",
                   "menuRotationInterval",
                   {{"5 seconds", 5},
                    {"10 seconds", 10},
                    {"15 seconds", 15},
                    {"30 seconds", 30},
                    {"1 minute", 60},
                    {"2 minutes", 120},
                    {"5 minutes", 300},
                    {"10 minutes", 600}},
                   Kind::presentation},
        ChoiceCase{
            "aiWindows", "AI menu bar quotas", "aiMenuWindows", {{"5-hour", 0}, {"Weekly", 1}}, Kind::presentation},
        ChoiceCase{"aiFill",
                   "AI menu bar fill",
                   "aiMenuRemaining",
                   {{"Remaining", true}, {"Used", false}},
                   Kind::presentation},
        ChoiceCase{"providers",
                   "Subscription order",
                   "claudeFirst",
                   {{"Codex → Claude", false}, {"Claude → Codex", true}},
                   Kind::presentation},
        ChoiceCase{"tabOrder",
                   "Tab order",
                   "tabOrder",
                   {{"AI → Mem → Awake", {"ai", "memory", "awake"}},
                    {"AI → Awake → Mem", {"ai", "awake", "memory"}},
                    {"Mem → AI → Awake", {"memory", "ai", "awake"}},
                    {"Mem → Awake → AI", {"memory", "awake", "ai"}},
                    {"Awake → AI → Mem", {"awake", "ai", "memory"}},
                    {"Awake → Mem → AI", {"awake", "memory", "ai"}}},
                   Kind::presentation},
        ChoiceCase{"memoryStyle",
                   "Memory icon",
                   "showChart",
                   {{"History chart", true}, {"Usage bar", false}},
                   Kind::appearance},
        ChoiceCase{"interval",
                   "Refresh interval",
                   "refreshInterval",
                   {{"2 seconds", 2}, {"5 seconds", 5}, {"10 seconds", 10}, {"30 seconds", 30}},
                   Kind::interval},
        ChoiceCase{"battery",
                   "Stop on battery at",
                   "awakeBatteryFloor",
                   {{"Never", 0}, {"10%", 10}, {"20%", 20}, {"30%", 30}, {"50%", 50}},
                   Kind::awakeRules}),
    [](const auto& instance) { return std::string(instance.param.identifier); });

using SettingsPresets = SettingsWindowTest;

TEST_F(SettingsPresets, ShowOffersFiveAndNamesItself) {
  EXPECT_EQ(choice("preset").items, (Keys{"All", "AI only", "Mem only", "Awake only", "Custom"}));
  EXPECT_EQ(choice("preset").accessibleName, "Show");
  EXPECT_TRUE(shows("Show"));
}

TEST_F(SettingsPresets, EachPresetIsWrittenSentAndShown) {
  for (std::size_t index = 0; index < 4; ++index) {
    choose("preset", index);
    EXPECT_EQ(settings.menuPreset(), static_cast<int>(index));
    EXPECT_EQ(choice("preset").selected, index);
    EXPECT_EQ(takeChanges(), std::vector{Change{Kind::monitors}});
  }
}

TEST_F(SettingsPresets, PickingCustomKeepsTheCategoriesAndShowsWhatTheyAre) {
  choose("preset", 0);
  (void)takeChanges();
  (void)takeWrittenKeys();
  choose("preset", 4);
  EXPECT_EQ(takeWrittenKeys(), Keys{});
  EXPECT_EQ(takeChanges(), std::vector{Change{Kind::monitors}});
  EXPECT_EQ(chosenItem("preset"), "All");
}

// What a hand-edited file may hold.

using SettingsOddities = SettingsWindowTest;

TEST_F(SettingsOddities, QuotasOutOfRangeCountAsWeekly) {
  for (const nlohmann::json& value : {nlohmann::json(7), nlohmann::json(-1), nlohmann::json("0"), nlohmann::json()}) {
    store("aiMenuWindows", value);
    EXPECT_EQ(chosenItem("aiWindows"), "Weekly") << value;
  }
}

TEST_F(SettingsOddities, LookingAtOddValuesDoesNotRepairThem) {
  store("aiMenuWindows", 7);
  store("refreshInterval", 3);
  window.close();
  controller.show();
  EXPECT_EQ(stored("aiMenuWindows"), 7);
  EXPECT_EQ(stored("refreshInterval"), 3);
  EXPECT_EQ(takeWrittenKeys(), Keys{});
}

TEST_F(SettingsOddities, UnknownControlsChangeNothing) {
  controller.handle(switched("nonsense", true));
  controller.handle(switched("preset", true));
  controller.handle(chosen("nonsense", 0));
  controller.handle(chosen("memory", 1));
  controller.handle(pressed("nonsense"));
  EXPECT_EQ(takeWrittenKeys(), Keys{});
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
}

}  // namespace
}  // namespace nimbo
