// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_pages.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "ui/dashboard/chart_bars.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {
namespace {

/// From top to bottom.
std::array<const MemoryRowContent*, 5> rowsOf(const ResourcesContent& content) {
  return {&content.app, &content.wired, &content.compressed, &content.available, &content.swap};
}

using namespace std::chrono_literals;

constexpr std::uint64_t kGigabyte = 1ULL << 30U;

MemorySnapshot snapshot() {
  MemorySnapshot memory;
  memory.total = 16 * kGigabyte;
  memory.app = 6 * kGigabyte;
  memory.wired = 5 * kGigabyte / 2;
  memory.compressed = 27 * kGigabyte / 10;
  memory.cached = 2 * kGigabyte;
  memory.swap = 3 * kGigabyte / 2;
  memory.pressure = MemoryPressure::normal;
  return memory;
}

/// What the page is made of.
struct Page {
  /// Before the first reading.
  enum Empty { empty };
  explicit Page(Empty /*empty*/) {}
  Page() {
    readings.memory = snapshot();
    readings.cpu = 0.234;
    readings.memoryHistory = {0.5, 0.6, 0.7};
    readings.cpuHistory = {0.1, 0.2};
  }
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  mutable DashboardWorld world;
  Settings& settings = world.settings;
  SystemReadings& readings = world.readings;
  ProcessView processes;
};

ResourcesContent shown(const Page& page) { return resourcesContent(page.world.sources(), page.processes); }

/// How samples are drawn in the page's chart.
std::vector<ChartBar> drawn(const std::vector<double>& samples, ColorRole tint) {
  return historyBars(samples, tint, {300, 56});
}

ProcessScan scanOf(int count) {
  ProcessScan scan;
  for (int pid = 1; pid <= count; ++pid) scan.processes.push_back({pid, "process", 1ULL << 20U});
  return scan;
}

std::array<std::string, 5> rowTexts(const ResourcesContent& content) {
  std::array<std::string, 5> texts;
  for (std::size_t row = 0; row < texts.size(); ++row) texts[row] = rowsOf(content)[row]->value.text;
  return texts;
}

TEST(ResourcesView, ReadingIsShownInFigures) {
  const auto content = shown(Page());
  EXPECT_EQ(content.hero.text, "70%");
  EXPECT_EQ(content.subtitle.text, "11.2 GB of 16.0 GB used");
  EXPECT_EQ(rowTexts(content), (std::array<std::string, 5>{"6.0 GB", "2.5 GB", "2.7 GB", "4.8 GB", "1.5 GB"}));
  EXPECT_EQ(content.breakdown.bars, breakdownBars(snapshot(), {300, 8}));
  EXPECT_EQ(content.breakdown.reading, "App memory 38%, wired 16%, compressed 17%");
  EXPECT_EQ(content.history.bars, drawn({0.5, 0.6, 0.7}, ColorRole::teal));
  EXPECT_EQ(content.history.accessibleName, "Memory history");
  EXPECT_EQ(content.history.reading, "70%");
}

TEST(ResourcesView, TotalOfZeroReadsZeroPercent) {
  Page state;
  state.readings.memory = MemorySnapshot{};
  EXPECT_EQ(shown(state).hero.text, "0%");
  EXPECT_EQ(shown(state).subtitle.text, "0.0 GB of 0.0 GB used");
}

TEST(ResourcesView, AbsentSwapReadsUnavailableBesideTheOtherFigures) {
  Page state;
  state.readings.memory->swap.reset();
  EXPECT_EQ(rowTexts(shown(state)),
            (std::array<std::string, 5>{"6.0 GB", "2.5 GB", "2.7 GB", "4.8 GB", "Unavailable"}));
}

TEST(ResourcesView, PressureHasAWordAndAColourPerLevel) {
  const auto pressureLabel = [](MemoryPressure pressure) {
    Page state;
    state.readings.memory->pressure = pressure;
    return shown(state).pressure;
  };
  EXPECT_EQ(pressureLabel(MemoryPressure::normal).text, "● Normal pressure");
  EXPECT_EQ(pressureLabel(MemoryPressure::normal).style.color, ColorRole::green);
  EXPECT_EQ(pressureLabel(MemoryPressure::warning).text, "● Elevated pressure");
  EXPECT_EQ(pressureLabel(MemoryPressure::warning).style.color, ColorRole::orange);
  EXPECT_EQ(pressureLabel(MemoryPressure::critical).text, "● High pressure");
  EXPECT_EQ(pressureLabel(MemoryPressure::critical).style.color, ColorRole::red);
  EXPECT_EQ(pressureLabel(MemoryPressure::unknown).text, "Pressure unavailable");
  EXPECT_EQ(pressureLabel(MemoryPressure::unknown).style.color, ColorRole::secondaryLabel);
}

void expectUnavailable(const ResourcesContent& content) {
  EXPECT_EQ(content.hero.text, "—");
  EXPECT_EQ(content.subtitle.text, "Memory unavailable. Retrying automatically…");
  EXPECT_EQ(content.pressure.text, "");
  EXPECT_EQ(content.breakdown.bars, breakdownBars({}, {300, 8}));
  EXPECT_EQ(content.breakdown.reading, "");
  EXPECT_EQ(rowTexts(content), (std::array<std::string, 5>{"—", "—", "—", "—", "—"}));
  EXPECT_EQ(content.history.bars, drawn({0.5, 0.6, 0.7}, ColorRole::teal));
}

TEST(ResourcesView, FailedReadingShowsDashesAndKeepsTheHistory) {
  Page state;
  state.readings.memory.reset();
  state.readings.memoryFailed = true;
  expectUnavailable(shown(state));
}

TEST(ResourcesView, FailedReadingHidesAnOldSnapshot) {
  Page state;
  state.readings.memoryFailed = true;
  expectUnavailable(shown(state));
}

TEST(ResourcesView, MemoryOffShowsTheCpuInstead) {
  Page state;
  state.settings.setMonitorMemory(false);
  const auto content = shown(state);
  EXPECT_EQ(content.hero.text, "23%");
  EXPECT_EQ(content.subtitle.text, "Total CPU utilization · all cores");
  EXPECT_EQ(content.pressure.text, "");
  EXPECT_EQ(content.history.bars, drawn({0.1, 0.2}, ColorRole::blue));
  EXPECT_EQ(content.history.accessibleName, "CPU history");
  EXPECT_EQ(content.time.text, "RECENT USAGE · 5s");
}

TEST(ResourcesView, MemoryOffAndNoCpuShowsADash) {
  Page state;
  state.settings.setMonitorMemory(false);
  state.readings.cpu.reset();
  EXPECT_EQ(shown(state).hero.text, "—");
}

TEST(ResourcesView, MemoryOffHidesAllThatSpeaksOfMemory) {
  Page state;
  state.settings.setMonitorMemory(false);
  state.settings.setMonitorCpu(true);
  const auto content = shown(state);
  EXPECT_FALSE(content.pressure.visible);
  EXPECT_FALSE(content.breakdown.visible);
  for (const auto* row : rowsOf(content)) EXPECT_FALSE(row->title.visible || row->value.visible);
  EXPECT_FALSE(content.cpu.visible);
  EXPECT_FALSE(content.processTitle.visible);
  EXPECT_FALSE(content.moreButton.visible);
  EXPECT_FALSE(content.lessButton.visible);
  EXPECT_FALSE(content.processes.visible);
  EXPECT_FALSE(content.processNote.visible);
  EXPECT_TRUE(content.hero.visible && content.subtitle.visible && content.history.visible && content.time.visible);
  EXPECT_TRUE(content.footer.visible && content.activityButton.visible);
}

TEST(ResourcesView, CpuLineIsShownOnlyWithBothMonitors) {
  Page state;
  EXPECT_FALSE(shown(state).cpu.visible);
  state.settings.setMonitorCpu(true);
  EXPECT_TRUE(shown(state).cpu.visible);
  EXPECT_EQ(shown(state).cpu.text, "CPU  23% utilized");
  state.readings.cpu.reset();
  EXPECT_EQ(shown(state).cpu.text, "CPU  Measuring…");
}

TEST(ResourcesView, TimeSpansTheHistoryAndIsNeverNegative) {
  const auto timeOf = [](std::size_t samples, std::chrono::seconds interval) {
    Page state;
    state.readings.memoryHistory.assign(samples, 0.5);
    state.settings.setRefreshInterval(interval);
    return shown(state).time.text;
  };
  EXPECT_EQ(timeOf(0, 5s), "RECENT USAGE · 0s");
  EXPECT_EQ(timeOf(1, 5s), "RECENT USAGE · 0s");
  EXPECT_EQ(timeOf(2, 5s), "RECENT USAGE · 5s");
  EXPECT_EQ(timeOf(40, 30s), "RECENT USAGE · 1170s");
}

TEST(ResourcesView, TextsBeforeTheFirstReading) {
  const auto content = shown(Page(Page::empty));
  EXPECT_EQ(content.hero.text, "—");
  EXPECT_EQ(content.subtitle.text, "Reading memory…");
  EXPECT_EQ(content.time.text, "RECENT USAGE");
  EXPECT_EQ(content.processTitle.text, "TOP PROCESSES");
  EXPECT_EQ(content.processNote.text, "Physical footprint · individual processes");
  EXPECT_EQ(rowTexts(content), (std::array<std::string, 5>{"—", "—", "—", "—", "—"}));
  EXPECT_EQ(content.history.bars, drawn({}, ColorRole::teal));
  EXPECT_EQ(content.history.reading, "");
}

TEST(ResourcesView, TemperatureIsRoundedToWholeDegrees) {
  Page state;
  state.readings.temperature = 61.6;
  EXPECT_EQ(shown(state).temperature.text, "CPU temperature  62°C · hottest sensor");
  state.readings.temperature.reset();
  EXPECT_EQ(shown(state).temperature.text, "CPU temperature unavailable on this Mac");
}

TEST(ResourcesView, LastLineNamesTheRefreshInterval) {
  Page state;
  EXPECT_EQ(shown(state).footer.text, "Updates every 5s");
  state.settings.setRefreshInterval(30s);
  EXPECT_EQ(shown(state).footer.text, "Updates every 30s");
}

TEST(ResourcesView, HeightFollowsMemoryTemperatureAndExpansion) {
  const auto height = [](bool memory, bool temperature, std::size_t limit) {
    Page state(Page::empty);
    state.settings.setMonitorMemory(memory);
    state.settings.setMonitorTemperature(temperature);
    state.processes.limit = limit;
    return resourcesHeight(state.world.sources(), state.processes);
  };
  EXPECT_EQ(height(true, false, 3), 596);
  EXPECT_EQ(height(true, true, 3), 620);
  EXPECT_EQ(height(true, false, 13), 683);
  EXPECT_EQ(height(true, true, 13), 707);
  EXPECT_EQ(height(true, true, 23), 707);
  EXPECT_EQ(height(false, false, 3), 278);
  EXPECT_EQ(height(false, true, 3), 302);
  EXPECT_EQ(height(false, false, 13), 278);
}

TEST(ResourcesView, FramesWithoutExtras) {
  const auto content = shown(Page());
  EXPECT_EQ(content.hero.frame, (Rect{18, 55, 302, 48}));
  EXPECT_EQ(content.subtitle.frame, (Rect{20, 108, 300, 18}));
  EXPECT_EQ(content.history.frame, (Rect{20, 146, 300, 56}));
  EXPECT_EQ(content.pressure.frame, (Rect{174, 210, 146, 16}));
  EXPECT_EQ(content.time.frame, (Rect{20, 211, 154, 14}));
  EXPECT_EQ(content.breakdown.frame, (Rect{20, 243, 300, 8}));
  EXPECT_EQ(content.cpu.frame, (Rect{20, 389, 300, 18}));
  EXPECT_EQ(content.temperature.frame, (Rect{20, 411, 300, 18}));
  EXPECT_EQ(content.processTitle.frame, (Rect{20, 422, 130, 15}));
  EXPECT_EQ(content.lessButton.frame, (Rect{157, 418, 72, 22}));
  EXPECT_EQ(content.moreButton.frame, (Rect{230, 418, 93, 22}));
  EXPECT_EQ(content.processes.frame, (Rect{20, 444, 300, 87}));
  EXPECT_EQ(content.processNote.frame, (Rect{20, 538, 300, 14}));
  EXPECT_EQ(content.activityButton.frame, (Rect{194, 566, 130, 22}));
  EXPECT_EQ(content.footer.frame, (Rect{20, 570, 170, 16}));
}

TEST(ResourcesView, TemperatureAndExpansionPushDownWhatFollows) {
  Page state;
  state.settings.setMonitorTemperature(true);
  state.processes.limit = 13;
  const auto content = shown(state);
  EXPECT_EQ(content.temperature.frame, (Rect{20, 411, 300, 18}));
  EXPECT_EQ(content.processTitle.frame, (Rect{20, 446, 130, 15}));
  EXPECT_EQ(content.lessButton.frame, (Rect{157, 442, 72, 22}));
  EXPECT_EQ(content.moreButton.frame, (Rect{230, 442, 93, 22}));
  EXPECT_EQ(content.processes.frame, (Rect{20, 468, 300, 174}));
  EXPECT_EQ(content.processNote.frame, (Rect{20, 649, 300, 14}));
  EXPECT_EQ(content.activityButton.frame, (Rect{194, 677, 130, 22}));
  EXPECT_EQ(content.footer.frame, (Rect{20, 681, 170, 16}));
}

TEST(ResourcesView, MemoryOffMovesTheTemperatureUp) {
  Page state;
  state.settings.setMonitorMemory(false);
  state.settings.setMonitorTemperature(true);
  const auto content = shown(state);
  EXPECT_EQ(content.temperature.frame, (Rect{20, 239, 300, 18}));
  EXPECT_EQ(content.footer.frame, (Rect{20, 276, 170, 16}));
  EXPECT_EQ(content.activityButton.frame, (Rect{194, 272, 130, 22}));
}

TEST(ResourcesView, RowsHaveTheirTitlesColoursFramesAndToolTips) {
  const auto content = shown(Page());
  const std::array<std::string, 5> titles{"App memory", "Wired", "Compressed", "Available", "Swap used"};
  const std::array colors{ColorRole::teal, ColorRole::indigo, ColorRole::orange, ColorRole::secondaryLabel,
                          ColorRole::secondaryLabel};
  const std::array<double, 5> tops{264, 287, 310, 333, 356};
  for (std::size_t row = 0; row < titles.size(); ++row) {
    const auto& [title, value] = *rowsOf(content)[row];
    EXPECT_EQ(title.text, titles[row]);
    EXPECT_EQ(title.style.color, colors[row]);
    EXPECT_EQ(title.frame, (Rect{20, tops[row], 160, 18}));
    EXPECT_EQ(value.frame, (Rect{190, tops[row], 130, 18}));
    EXPECT_EQ(value.style.alignment, TextAlignment::right);
    EXPECT_EQ(title.toolTip, value.toolTip);
  }
  EXPECT_EQ(content.app.title.toolTip, "");
  EXPECT_EQ(content.available.title.toolTip,
            "RAM available for use, including reclaimable cached files. This is more useful than counting only empty "
            "pages.");
  EXPECT_EQ(content.swap.title.toolTip, "Memory stored on disk. Swap may remain allocated after pressure subsides.");
}

TEST(ResourcesView, FontsAreAsDesigned) {
  const auto content = shown(Page());
  EXPECT_EQ(content.hero.style, (TextStyle{38, FontWeight::semibold, ColorRole::label, TextAlignment::left, true}));
  EXPECT_EQ(content.subtitle.style, (TextStyle{12, FontWeight::regular, ColorRole::secondaryLabel}));
  EXPECT_EQ(content.pressure.style.size, 11);
  EXPECT_EQ(content.pressure.style.weight, FontWeight::medium);
  EXPECT_EQ(content.time.style, (TextStyle{9, FontWeight::medium, ColorRole::tertiaryLabel}));
  const TextStyle sensor{11, FontWeight::medium, ColorRole::secondaryLabel, TextAlignment::left, true};
  EXPECT_EQ(content.cpu.style, sensor);
  EXPECT_EQ(content.temperature.style, sensor);
  EXPECT_EQ(content.processTitle.style, (TextStyle{10, FontWeight::semibold, ColorRole::secondaryLabel}));
  EXPECT_EQ(content.processNote.style, (TextStyle{9, FontWeight::regular, ColorRole::tertiaryLabel}));
  EXPECT_EQ(content.footer.style, (TextStyle{10, FontWeight::regular, ColorRole::tertiaryLabel}));
  EXPECT_EQ(content.moreButton.textSize, 11);
  EXPECT_EQ(content.lessButton.textSize, 11);
  EXPECT_EQ(content.activityButton.textSize, 11);
  EXPECT_EQ(content.activityButton.look, ButtonLook::inlined);
  EXPECT_EQ(content.activityButton.identifier, "activity");
  EXPECT_EQ(content.activityButton.title, "Activity Monitor ↗");
}

TEST(ResourcesView, ProcessesAreListedWithNamesPidsAndSizes) {
  Page state;
  state.processes.scan = {{{4711, "big", kGigabyte}, {12, "small", kGigabyte - 1}}, 0};
  const auto list = shown(state).processes;
  ASSERT_EQ(list.labels.size(), 4U);
  EXPECT_EQ(list.document, (Size{300, 58}));
  EXPECT_EQ(list.labels[0].text, "big");
  EXPECT_EQ(list.labels[0].toolTip, "big · PID 4711");
  EXPECT_EQ(list.labels[0].frame, (Rect{0, 5, 200, 19}));
  EXPECT_EQ(list.labels[0].style.weight, FontWeight::medium);
  EXPECT_EQ(list.labels[1].frame, (Rect{201, 5, 83, 19}));
  EXPECT_EQ(list.labels[1].style.alignment, TextAlignment::right);
  EXPECT_EQ(list.labels[2].frame, (Rect{0, 34, 200, 19}));
  EXPECT_EQ(list.labels[3].frame, (Rect{201, 34, 83, 19}));
}

TEST(ResourcesView, ProcessOfExactlyOneGigabyteShowsGigabytesAndOneByteLessMegabytes) {
  Page state;
  state.processes.scan = {{{1, "a", 1'073'741'824}, {2, "b", 1'073'741'823}}, 0};
  const auto list = shown(state).processes;
  ASSERT_EQ(list.labels.size(), 4U);
  EXPECT_EQ(list.labels[1].text, "1.0 GB");
  EXPECT_EQ(list.labels[3].text, "1024 MB");
}

TEST(ResourcesView, NoProcessesLeaveOneLineThatSaysSo) {
  const auto list = shown(Page()).processes;
  ASSERT_EQ(list.labels.size(), 1U);
  EXPECT_EQ(list.labels[0].text, "No readable processes yet");
  EXPECT_EQ(list.labels[0].frame, (Rect{0, 7, 285, 18}));
  EXPECT_EQ(list.labels[0].style.color, ColorRole::secondaryLabel);
  EXPECT_EQ(list.document, (Size{300, 29}));
}

TEST(ResourcesView, ThirteenProcessesAtALimitOfThirteenFillTheListAndDisableShowMore) {
  Page state;
  state.processes.scan = scanOf(13);
  state.processes.limit = 13;
  const auto content = shown(state);
  EXPECT_EQ(content.processTitle.text, "TOP 13 PROCESSES");
  EXPECT_FALSE(content.moreButton.enabled);
  EXPECT_TRUE(content.lessButton.visible);
  EXPECT_EQ(content.processes.labels.size(), 26U);
  EXPECT_EQ(content.processes.document, (Size{300, 377}));
}

TEST(ResourcesView, EightProcessesAtALimitOfThirteenAreCountedInTheTitle) {
  Page state;
  state.processes.scan = scanOf(8);
  state.processes.limit = 13;
  EXPECT_EQ(shown(state).processTitle.text, "TOP 8 PROCESSES");
  EXPECT_FALSE(shown(state).moreButton.enabled);
}

TEST(ResourcesView, CollapsedTitleSaysThreeHoweverManyThereAre) {
  Page state;
  state.processes.scan = scanOf(2);
  EXPECT_EQ(shown(state).processTitle.text, "TOP 3 PROCESSES");
  EXPECT_FALSE(shown(state).moreButton.enabled);
  state.processes.scan = scanOf(4);
  EXPECT_EQ(shown(state).processTitle.text, "TOP 3 PROCESSES");
  EXPECT_TRUE(shown(state).moreButton.enabled);
  EXPECT_EQ(shown(state).processes.labels.size(), 6U);
  EXPECT_FALSE(shown(state).lessButton.visible);
}

TEST(ResourcesView, NoteCountsWhatCouldNotBeRead) {
  Page state;
  state.processes.scan.unreadable = 17;
  EXPECT_EQ(shown(state).processNote.text, "Physical footprint · 17 inaccessible/exited");
  state.processes.scan.unreadable = 0;
  EXPECT_EQ(shown(state).processNote.text, "Physical footprint · individual processes");
  EXPECT_EQ(shown(state).processNote.toolTip,
            "Includes compressed memory charged to each process. Helper processes are listed separately. Protected or "
            "exited processes may be omitted. Process totals need not equal system memory used.");
}

TEST(ResourcesView, ChartsCanBeNamedByAScreenReader) {
  EXPECT_EQ(shown(Page()).breakdown.accessibleName, "Memory breakdown");
  EXPECT_EQ(shown(Page()).activityButton.accessibleName, "Activity Monitor");
}

}  // namespace
}  // namespace nimbo
