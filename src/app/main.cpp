// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "app/launch_mode.h"
#include "app/reports/claude_desktop_check.h"
#include "app/reports/diagnostics_report.h"
#include "app/reports/performance_probe.h"
#include "app/windows/user_interface_maker.h"
#include "platform/platform_services.h"
#include "settings/settings.h"

namespace nimbo {
namespace {

int runDiagnostics() {
  const SystemReaders readers = makeSystemReaders();
  SystemSampler sampler(*readers.hostStatistics, *readers.clock);
  const auto sensor = readers.makeTemperatureSensor();
  const auto report = makeDiagnosticsReport(sampler, *sensor, *readers.processTable, *readers.clock);
  std::fputs(report.output.c_str(), stdout);
  std::fputs(report.errorOutput.c_str(), stderr);
  return report.exitStatus;
}

int runMenuBar(const std::vector<std::string>& links) {
  const auto platform = makePlatformServices();
  AppDelegate* controller = nullptr;
  const auto role = platform->applicationInstance().claim(links, {[&controller] {
                                                                    if (controller != nullptr) controller->activate();
                                                                  },
                                                                  [&controller](const std::vector<std::string>& later) {
                                                                    if (controller != nullptr) controller->open(later);
                                                                  }});
  if (!role) {
    fmt::print(stderr, "nimbo: {}\n", role.error().message);
    return 1;
  }
  if (*role == InstanceRole::later) return 0;

  Settings settings(platform->userDefaults(), platform->userDefaultsDomains(), platform->bundleInfo().identifier);
  AppDelegate delegate(*platform, userInterfaceFromModule(platform->moduleLoader()), settings,
                       AppDelegate::Widgets::published);
  controller = &delegate;
  delegate.open(links);
  delegate.applicationDidFinishLaunching();
  platform->mainLoop().run();
  controller = nullptr;
  delegate.applicationWillTerminate();
  return 0;
}

int runProfile() {
  const auto platform = makePlatformServices();
  // Each stage can be looked at from outside as soon as it has been told, also through a pipe.
  const auto print = [](const std::string& line) {
    fmt::print("{}\n", line);
    std::fflush(stdout);
  };
  const auto complain = [](const std::string& line) { fmt::print(stderr, "nimbo: {}\n", line); };
  return runPerformanceProbe(*platform, userInterfaceFromModule(platform->moduleLoader(), DisplayNeed::optional), print,
                             complain);
}

int runClaudeDesktopCheck() {
  const SystemReaders readers = makeSystemReaders();
  const auto accessibility = makeAccessibility();
  const ClaudeDesktopUsage usage(*accessibility, *readers.clock);
  const auto check = makeClaudeDesktopCheck(usage, userSurroundings().localZone());
  std::fputs(check.output.c_str(), stdout);
  std::fputs(check.errorOutput.c_str(), stderr);
  return check.exitStatus;
}

int run(const std::vector<std::string>& arguments) {
  switch (launchMode(arguments)) {
    case LaunchMode::claudeDesktopCheck:
      return runClaudeDesktopCheck();
    case LaunchMode::diagnostics:
      return runDiagnostics();
    case LaunchMode::profile:
      return runProfile();
    case LaunchMode::menuBar:
      break;
  }
  return runMenuBar(launchLinks(arguments));
}

}  // namespace
}  // namespace nimbo

int main(int argc, char** argv) { return nimbo::run({argv, argv + argc}); }
