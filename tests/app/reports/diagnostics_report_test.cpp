// SPDX-License-Identifier: MIT
#include "app/reports/console_reports.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/fake_clock.h"
#include "support/fake_host_statistics.h"
#include "support/fake_process_table.h"
#include "support/fake_temperature_sensor.h"

namespace nimbo {
namespace {

constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30;

class DiagnosticsReportTest : public testing::Test {
 protected:
  DiagnosticsReportTest() {
    host.counts = MemoryCounts{.wired = kGigabyte * 5 / 2,
                               .compressor = kGigabyte * 27 / 10,
                               .active = kGigabyte * 5,
                               .inactive = kGigabyte * 3,
                               .fileBacked = kGigabyte * 2};
  }

  ConsoleReport make() {
    SystemSampler sampler(host, clock);
    return makeDiagnosticsReport(sampler, temperature, processes, clock);
  }

  /// The report's line that begins with `start`; empty when there is none.
  std::string line(const std::string& start) {
    const std::string output = '\n' + make().output;
    const auto found = output.find('\n' + start);
    return found == std::string::npos ? "" : output.substr(found + 1, output.find('\n', found + 1) - found - 1);
  }

  FakeHostStatistics host;
  FakeClock clock;
  FakeTemperatureSensor temperature;
  FakeProcessTable processes;
};

TEST_F(DiagnosticsReportTest, HealthyMachinePrintsEveryLineInOrder) {
  host.swap = std::uint64_t{3} << 29;
  temperature.sensors = {61.27};
  processes.add(4242, std::uint64_t{5} << 28, "firefox");
  processes.add(17, 345 << 20, "gnome-shell");
  processes.addUnreadable(99);
  processes.onRead = [this] { clock.advance(std::chrono::microseconds(4100)); };
  const ConsoleReport report = make();
  EXPECT_EQ(report.output,
            "Total: 16.0 GB\n"
            "Used: 11.2 GB (70%)\n"
            "Available: 4.8 GB\n"
            "App: 6.0 GB; wired: 2.5 GB; compressed: 2.7 GB\n"
            "Pressure: Normal; swap: 1.5 GB\n"
            "CPU temperature: 61.3°C (hottest available sensor)\n"
            "Process scan: 2 readable, 1 inaccessible/exited, 12.3 ms\n"
            "4242\t1.2 GB\tfirefox\n"
            "17\t345 MB\tgnome-shell\n");
  EXPECT_EQ(report.errorOutput, "");
  EXPECT_EQ(report.exitStatus, 0);
}

TEST_F(DiagnosticsReportTest, UnreadableMemoryIsTheOnlyErrorAndStopsTheReport) {
  host.counts.reset();
  processes.add(1, 1, "init");
  const ConsoleReport report = make();
  EXPECT_EQ(report.output, "");
  EXPECT_EQ(report.errorOutput, "Failed to read system memory\n");
  EXPECT_EQ(report.exitStatus, 1);
  EXPECT_EQ(temperature.readings, 0);
  EXPECT_TRUE(processes.asked.empty());
}

TEST_F(DiagnosticsReportTest, SwapThatCannotBeReadIsUnavailable) {
  host.swap.reset();
  EXPECT_EQ(line("Pressure"), "Pressure: Normal; swap: unavailable");
}

TEST_F(DiagnosticsReportTest, PressureIsNamedByItsWord) {
  host.pressure = MemoryPressure::warning;
  EXPECT_EQ(line("Pressure"), "Pressure: Elevated; swap: 0.0 GB");
  host.pressure = MemoryPressure::critical;
  EXPECT_EQ(line("Pressure"), "Pressure: High; swap: 0.0 GB");
  host.pressure = MemoryPressure::unknown;
  EXPECT_EQ(line("Pressure"), "Pressure: Unavailable; swap: 0.0 GB");
}

TEST_F(DiagnosticsReportTest, TemperatureThatCannotBeReadIsUnavailableAndNoError) {
  EXPECT_EQ(line("CPU"), "CPU temperature: unavailable");
  EXPECT_EQ(make().exitStatus, 0);
}

TEST_F(DiagnosticsReportTest, TotalOfNothingPrintsZeroPercent) {
  host.total = 0;
  EXPECT_EQ(line("Used"), "Used: 0.0 GB (0%)");
  EXPECT_EQ(line("Available"), "Available: 0.0 GB");
}

TEST_F(DiagnosticsReportTest, ProcessOfExactlyOneGigabyteAndOneByteLess) {
  processes.add(1, 1073741824, "a");
  processes.add(2, 1073741823, "b");
  EXPECT_EQ(line("1\t"), "1\t1.0 GB\ta");
  EXPECT_EQ(line("2\t"), "2\t1024 MB\tb");
}

TEST_F(DiagnosticsReportTest, NameThatBreaksALineOrSteersTheTerminalIsOneLine) {
  processes.add(7, 1 << 20, "a\nUsed: 0.0 GB\x1b[2J");
  EXPECT_EQ(line("7\t"), "7\t1 MB\ta\uFFFDUsed: 0.0 GB\uFFFD[2J");
}

TEST_F(DiagnosticsReportTest, EmptyScanPrintsNoProcessLines) {
  const std::string output = make().output;
  EXPECT_TRUE(output.ends_with("Process scan: 0 readable, 0 inaccessible/exited, 0.0 ms\n"));
}

TEST_F(DiagnosticsReportTest, AtMostTenProcessesAreListedLargestFirst) {
  for (std::int32_t pid = 1; pid <= 12; ++pid) processes.add(pid, static_cast<std::uint64_t>(pid) << 20, "p");
  EXPECT_EQ(line("Process scan"), "Process scan: 12 readable, 0 inaccessible/exited, 0.0 ms");
  EXPECT_EQ(line("12\t"), "12\t12 MB\tp");
  EXPECT_EQ(line("3\t"), "3\t3 MB\tp");
  EXPECT_EQ(line("2\t"), "");
}

TEST_F(DiagnosticsReportTest, FewerThanTenProcessesAreAllListed) {
  for (std::int32_t pid = 1; pid <= 9; ++pid) processes.add(pid, static_cast<std::uint64_t>(pid) << 20, "p");
  const std::string output = make().output;
  EXPECT_EQ(std::count(output.begin(), output.end(), '\t'), 18);
}

}  // namespace
}  // namespace nimbo
