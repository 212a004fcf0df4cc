// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/app_delegate.h"
#include "app/launch.h"
#include "app/reports/console_reports.h"
#include "app/reports/performance_probe.h"
#include "platform/platform_services.h"
#include "settings/settings.h"
#include "ui/remote/remote_user_interface.h"

namespace nimbo {
namespace {

int print(const ConsoleReport& report) {
  std::fputs(report.output.c_str(), stdout);
  std::fputs(report.errorOutput.c_str(), stderr);
  return report.exitStatus;
}

int runDiagnostics() {
  const SystemReaders readers = makeSystemReaders();
  SystemSampler sampler(*readers.hostStatistics, *readers.clock);
  const auto sensor = readers.makeTemperatureSensor();
  return print(makeDiagnosticsReport(sampler, *sensor, *readers.processTable, *readers.clock));
}

std::unique_ptr<UserInterface> makeUserInterface(PlatformServices& platform, DisplayNeed need) {
  const RemoteUserInterface::Services services{platform.mainLoop(), *platform.readers().clock, platform.workspace()};
  return std::make_unique<RemoteUserInterface>(services, platform.windowsStarter(), need);
}

/// Runs `program`, which leaves nothing that uses the platform but work in the background, and ends.
int runOnPlatform(const std::function<int(PlatformServices&)>& program) {
  auto platform = makePlatformServices();
  const int status = program(*platform);
  // What hangs keeps all that it may use, until the process is gone.
  if (!platform->end()) std::_Exit(status);
  return status;
}

int runMenuBar(PlatformServices& platform, const std::vector<std::string>& links) {
  AppDelegate* controller = nullptr;
  ApplicationInstanceHandlers handlers;
  handlers.activate = [&controller] {
    if (controller != nullptr) controller->activate();
  };
  handlers.open = [&controller](const std::vector<std::string>& later) {
    if (controller != nullptr) controller->open(later);
  };
  const auto role = platform.applicationInstance().claim(links, handlers);
  if (!role) {
    fmt::print(stderr, "nimbo: {}\n", role.error().message);
    return 1;
  }
  if (*role == InstanceRole::later) return 0;

  Settings settings(platform.userDefaults(), platform.userDefaultsDomains(), platform.bundleInfo().identifier);
  const auto windows = makeUserInterface(platform, DisplayNeed::required);
  AppDelegate delegate(platform, *windows, settings, AppDelegate::Audience::user);
  controller = &delegate;
  delegate.open(links);
  delegate.applicationDidFinishLaunching();
  platform.mainLoop().run();
  platform.applicationInstance().release();  // a new start need not wait for what follows
  controller = nullptr;
  delegate.applicationWillTerminate();
  return 0;
}

int runProfile(PlatformServices& platform) {
  // Each stage can be looked at from outside as soon as it has been told, also through a pipe.
  const auto print = [](const std::string& line) {
    fmt::print("{}\n", line);
    std::fflush(stdout);
  };
  const auto complain = [](const std::string& line) { fmt::print(stderr, "nimbo: {}\n", line); };
  const auto windows = makeUserInterface(platform, DisplayNeed::optional);
  return runPerformanceProbe(platform, *windows, print, complain);
}

int runClaudeDesktopCheck() {
  const SystemReaders readers = makeSystemReaders();
  const auto accessibility = makeAccessibility();
  const Wording wording = systemWording();
  const ClaudeDesktopUsage usage(*accessibility, *readers.clock, wording);
  return print(makeClaudeDesktopCheck(usage, userSurroundings().localZone()));
}

int run(const std::vector<std::string>& arguments) {
  switch (launchMode(arguments)) {
    case LaunchMode::claudeDesktopCheck:
      return runClaudeDesktopCheck();
    case LaunchMode::diagnostics:
      return runDiagnostics();
    case LaunchMode::profile:
      return runOnPlatform(runProfile);
    case LaunchMode::menuBar:
      break;
  }
  return runOnPlatform(
      [&arguments](PlatformServices& platform) { return runMenuBar(platform, launchLinks(arguments)); });
}

}  // namespace
}  // namespace nimbo

int main(int argc, char** argv) { return nimbo::run({argv, argv + argc}); }
