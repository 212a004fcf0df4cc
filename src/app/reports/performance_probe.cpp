// SPDX-License-Identifier: MIT
#include "app/reports/performance_probe.h"

#include <fmt/format.h>

#include <random>
#include <utility>

#include "app/app_delegate.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kSettling{2};
constexpr std::chrono::seconds kIdleSpan{6};
constexpr std::chrono::seconds kLoading{1};  // the process scan comes back from its queue meanwhile
constexpr std::chrono::seconds kSession{1};
constexpr double kMebibyte = 1048576;

}  // namespace

PerformanceProbe::PerformanceProbe(PlatformServices& platform, AppDelegate& delegate, Print print, Print complain)
    : platform_(platform), delegate_(delegate), print_(std::move(print)), complain_(std::move(complain)) {}

void PerformanceProbe::start() { next(kSettling, &PerformanceProbe::measureIdle); }

void PerformanceProbe::next(std::chrono::milliseconds delay, void (PerformanceProbe::*stage)()) {
  timer_ = platform_.mainLoop().every(delay, std::chrono::milliseconds(0), [this, stage] {
    timer_.reset();
    (this->*stage)();
  });
}

PerformanceProbe::Sample PerformanceProbe::sample() const {
  const auto usage = platform_.ownUsage();
  if (!usage) complain_("the system does not tell what this process costs");
  return {usage.value_or(ResourceUsage{}), platform_.readers().clock->uptime()};
}

void PerformanceProbe::printMemory(const char* label) const {
  const auto usage = sample().usage;
  print_(fmt::format("{}: footprint {:.2f} MiB; RSS {:.2f} MiB", label,
                     static_cast<double>(usage.physicalFootprint) / kMebibyte,
                     static_cast<double>(usage.residentSize) / kMebibyte));
}

void PerformanceProbe::measureIdle() {
  printMemory("Idle, dashboard unopened");
  idleStart_ = sample();
  next(kIdleSpan, &PerformanceProbe::loadDashboard);
}

void PerformanceProbe::loadDashboard() {
  const auto idleEnd = sample();
  const double seconds = (idleEnd.uptime - idleStart_.uptime).count();
  const std::chrono::duration<double> used = idleEnd.usage.cpuTime - idleStart_.usage.cpuTime;
  print_(fmt::format("Idle CPU: {:.3f}% of one core over {:.1f}s", used.count() / seconds * 100, seconds));
  delegate_.loadDashboardOffscreen();
  next(kLoading, &PerformanceProbe::startSession);
}

void PerformanceProbe::startSession() {
  if (!delegate_.dashboardLoaded()) complain_("the dashboard could not be loaded");
  printMemory("Dashboard and process list loaded offscreen");
  auto& awake = delegate_.awake();
  if (!awake.start(std::nullopt, false, platform_.readers().clock->now())) {
    complain_("no awake session could be started: " + awake.message());
  }
  next(kSession, &PerformanceProbe::finish);
}

void PerformanceProbe::finish() {
  sessionFailed_ = !delegate_.awake().isActive();
  printMemory(sessionFailed_ ? "Background awake session could not be held" : "Background awake session active");
  platform_.mainLoop().quit();
}

int runPerformanceProbe(PlatformServices& platform, UserInterface& windows, PerformanceProbe::Print print,
                        PerformanceProbe::Print complain) {
  std::random_device random;
  const std::string domain = fmt::format("Nimbo.Performance.{:08X}{:08X}", random(), random());
  bool failed = false;
  {
    // It goes before its domain is removed, because it may write until then.
    const auto defaults = platform.makeUserDefaults(domain);
    if (!defaults) {
      complain("the settings of the run cannot be kept");
      return 1;
    }
    Settings settings(*defaults);
    AppDelegate delegate(platform, windows, settings, AppDelegate::Audience::none);
    delegate.applicationDidFinishLaunching();
    PerformanceProbe probe(platform, delegate, std::move(print), std::move(complain));
    probe.start();
    platform.mainLoop().run();
    failed = probe.sessionFailed();
    delegate.applicationWillTerminate();
  }
  platform.userDefaultsDomains().removePersistentDomain(domain);
  return failed ? 1 : 0;
}

}  // namespace nimbo
