// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "app/app_delegate.h"
#include "app/launch.h"
#include "app/reports/console_reports.h"
#include "app/reports/performance_probe.h"
#include "app/usage_providers.h"
#include "awake/awake_manager.h"
#include "command/command_line.h"
#include "command/run_command.h"
#include "platform/platform_services.h"
#include "remote_control/remote_control.h"
#include "settings/settings.h"
#include "ui/user_interface.h"

namespace nimbo {
namespace {

int print(const ConsoleReport& report) {
  std::fputs(report.output.c_str(), stdout);
  std::fputs(report.errorOutput.c_str(), stderr);
  return report.exitStatus;
}

void complain(const std::string& line) { fmt::print(stderr, "nimbo: {}\n", line); }

int runDiagnostics() {
  const SystemReaders readers = makeSystemReaders();
  SystemSampler sampler(*readers.hostStatistics, *readers.clock);
  const auto sensor = readers.makeTemperatureSensor();
  return print(makeDiagnosticsReport(sampler, *sensor, *readers.makeProcessTable(), *readers.clock));
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
  handlers.actions["settings"] = [&controller] {
    if (controller != nullptr) controller->openSettings();
  };
  handlers.actions["quit"] = [&controller] {
    if (controller != nullptr) controller->quit();
  };
  const auto role = platform.applicationInstance().claim(links, handlers);
  if (!role) {
    complain(role.error().message);
    return 1;
  }
  if (*role == InstanceRole::later) return 0;

  Settings settings(platform.userDefaults(), platform.userDefaultsDomains(), platform.bundleInfo().identifier);
  const auto windows = makeUserInterface(platform, DisplayNeed::required);
  AppDelegate delegate(platform, *windows, settings, AppDelegate::Audience::user);
  controller = &delegate;
  platform.remoteControl().offer(delegate.remoteControlHandlers());
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

/// As the running program would, by a manager of this process.
Result<int, std::string> holdHere(const ForegroundHold& hold) {
  std::optional<std::string> refusal;
  const int status = runOnPlatform([&](PlatformServices& platform) {
    Settings settings(platform.userDefaults(), platform.userDefaultsDomains(), platform.bundleInfo().identifier);
    AwakeManager awake({platform.mainLoop(), *platform.readers().clock, platform.assertionClient(),
                        platform.powerSources(), platform.displayPower(), settings, platform.wording()});
    if (const auto held = awake.hold(hold.name, hold.keepDisplayOn); !held) {
      refusal = held.error();
      return EXIT_FAILURE;
    }
    awake.onRefusal = complain;
    const auto termination = platform.termination().observe([&hold](Termination::Cause cause) {
      if (hold.interruptible || cause == Termination::Cause::request) hold.terminated();
    });
    int outcome = EXIT_SUCCESS;
    std::thread worker([&] {
      outcome = hold.work();
      platform.mainLoop().post([&platform] { platform.mainLoop().quit(); });
    });
    platform.mainLoop().run();
    worker.join();
    return outcome;
  });
  if (refusal) return tl::unexpected(*refusal);
  return status;
}

/// As the running program would; nothing else runs meanwhile.
Result<UsageStates, RemoteError> readUsageHere() {
  UsageStates states;
  runOnPlatform([&states](PlatformServices& platform) {
    const Settings settings(platform.userDefaults(), platform.userDefaultsDomains(), platform.bundleInfo().identifier);
    bool begun = false;
    std::optional<UsageProviders> usage;
    const auto endWhenRead = [&] {
      if (begun && !usage->isRefreshing()) platform.mainLoop().quit();
    };
    usage.emplace(platform, settings, endWhenRead);
    usage->settingsChanged();  // from none before: reads all that are on, as asked for
    begun = true;
    platform.mainLoop().post(endWhenRead);
    const auto interrupted = platform.termination().observe([](Termination::Cause) { std::_Exit(EXIT_FAILURE); });
    platform.mainLoop().run();
    states = usage->states();
    usage->stop();
    return EXIT_SUCCESS;
  });
  return states;
}

int runFromShell(const std::vector<std::string>& arguments) {
  const SystemReaders readers = makeSystemReaders();
  const auto command = commandOf(arguments, readers.clock->now());
  if (!command) {
    complain(command.error());
    return static_cast<int>(CommandStatus::misused);
  }
  std::unique_ptr<RunningProgram> program;
  std::unique_ptr<TemperatureSensor> sensor;
  std::shared_ptr<ProcessTable> processes;
  const auto programs = makeForegroundPrograms();
  const auto made = [](auto& object, const auto& make) -> auto& {
    if (!object) object = make();
    return *object;
  };
  return runCommand(*command,
                    {.program = [&]() -> RunningProgram& { return made(program, makeRunningProgram); },
                     .programs = *programs,
                     .clock = *readers.clock,
                     .host = [&]() -> HostStatistics& { return *readers.hostStatistics; },
                     .processes = [&]() -> ProcessTable& { return made(processes, readers.makeProcessTable); },
                     .temperature = [&]() -> TemperatureSensor& { return made(sensor, readers.makeTemperatureSensor); },
                     .holdHere = holdHere,
                     .readUsageHere = readUsageHere,
                     .version = programVersion(),
                     .print =
                         [](const std::string& text) {
                           std::fputs(text.c_str(), stdout);
                           std::fflush(stdout);  // who watches reads it at once
                         },
                     .complain = complain});
}

int run(const std::vector<std::string>& arguments) {
  switch (launchMode(arguments)) {
    case LaunchMode::claudeDesktopCheck:
      return runClaudeDesktopCheck();
    case LaunchMode::diagnostics:
      return runDiagnostics();
    case LaunchMode::profile:
      return runOnPlatform(runProfile);
    case LaunchMode::command:
      return runFromShell(arguments);
    case LaunchMode::menuBar:
      break;
  }
  return runOnPlatform(
      [&arguments](PlatformServices& platform) { return runMenuBar(platform, launchLinks(arguments)); });
}

/// What the system refuses and nothing can do without, such as memory, ends the program with a line on why. Whatever
/// was held goes with the process.
[[noreturn]] void endForWant() {
  const auto end = [](const char* want) {
    for (const char* const part : {"nimbo: ", want, "\n"}) std::fputs(part, stderr);
    std::_Exit(EXIT_FAILURE);
  };
  try {
    if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
  } catch (const std::bad_alloc&) {
    end("out of memory");
  } catch (const std::system_error& error) {
    end(error.what());
  } catch (...) {  // a fault of our own
  }
  std::abort();
}

}  // namespace
}  // namespace nimbo

int main(int argc, char** argv) {
  std::set_terminate(nimbo::endForWant);
  return nimbo::run({argv, argv + argc});
}
