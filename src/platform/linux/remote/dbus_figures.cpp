// SPDX-License-Identifier: MIT
#include "platform/linux/remote/dbus_figures.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/program_address.h"
#include "usage/usage_status.h"

namespace nimbo {
namespace {

constexpr std::size_t kMostWatchers = 64;
constexpr std::array<std::string_view, 4> kResources{"Memory", "MemoryFailed", "Cpu", "Temperature"};

/// What others are told of it.
UsageState toldOf(UsageState state) {
  state.isRefreshing = false;
  state.retryNotBefore.reset();
  return state;
}

UsageStates toldOf(const UsageStates& states) {
  UsageStates told;
  for (const auto& [provider, state] : states) told.emplace(provider, toldOf(state));
  return told;
}

SystemReadings toldOf(const SystemReadings& readings) {
  SystemReadings told;
  told.memory = readings.memory;
  if (told.memory) told.memory->cached = 0;
  if (told.memory) told.memory->timestamp = {};
  told.memoryFailed = readings.memoryFailed;
  told.cpu = readings.cpu;
  told.temperature = readings.temperature;
  return told;
}

}  // namespace

const sd_bus_vtable DbusFigures::kUsageTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Refresh", "", "", bus_table::method<&DbusFigures::refresh>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Codex", "(bsxsa(sdx))", bus_table::property<&DbusFigures::codex>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Claude", "(bsxsa(sdx))", bus_table::property<&DbusFigures::claude>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_VTABLE_END,
};

const sd_bus_vtable DbusFigures::kResourcesTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_NAMES("Watch", "as", SD_BUS_PARAM(properties), "", , bus_table::method<&DbusFigures::watch>,
                             SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Memory", "(ttttxs)", bus_table::property<&DbusFigures::memory>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("MemoryFailed", "b", bus_table::property<&DbusFigures::memoryFailed>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Cpu", "d", bus_table::property<&DbusFigures::cpu>, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Temperature", "d", bus_table::property<&DbusFigures::temperature>, 0,
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_VTABLE_END,
};

DbusFigures::DbusFigures(sd_bus* session, const RemoteControlHandlers& handlers)
    : session_(session),
      handlers_(handlers),
      toldUsage_(toldOf(handlers.usage())),
      usageObject_(addObject(session, kProgramPath, kUsageInterface, kUsageTable, this)),
      resourcesObject_(addObject(session, kProgramPath, kResourcesInterface, kResourcesTable, this)) {}

void DbusFigures::usageChanged() {
  const UsageStates before = std::exchange(toldUsage_, toldOf(handlers_.usage()));
  std::vector<const char*> changed;
  const auto compare = [&](const char* name, UsageProvider provider) {
    if (stateOf(before, provider) != stateOf(toldUsage_, provider)) changed.push_back(name);
  };
  compare("Codex", UsageProvider::codex);
  compare("Claude", UsageProvider::claude);
  emitChanged(session_, kProgramPath, kUsageInterface, std::move(changed));
}

void DbusFigures::readingsChanged() {
  if (watchers_.empty()) return;
  const SystemReadings before = std::exchange(toldReadings_, toldOf(handlers_.readings()));
  std::vector<const char*> changed;
  const auto compare = [&](const char* name, bool same) {
    const auto wants = [name](const auto& watcher) { return watcher.second.names.contains(name); };
    if (!same && std::ranges::any_of(watchers_, wants)) changed.push_back(name);
  };
  compare("Memory", before.memory == toldReadings_.memory);
  compare("MemoryFailed", before.memoryFailed == toldReadings_.memoryFailed);
  compare("Cpu", before.cpu == toldReadings_.cpu);
  compare("Temperature", before.temperature == toldReadings_.temperature);
  emitChanged(session_, kProgramPath, kResourcesInterface, std::move(changed));
}

void DbusFigures::writeUsage(BusWriter& writer, UsageProvider provider) const {
  const UsageState& state = stateOf(handlers_.usage(), provider);
  const UsageSnapshot snapshot = state.snapshot.value_or(UsageSnapshot());
  writer.inside(SD_BUS_TYPE_STRUCT, "bsxsa(sdx)", [&] {
    writer.add(state.enabled);
    writer.add(repairedUtf8(state.message.value_or("")));
    writer.add(secondsOf(state.snapshot ? std::optional(snapshot.fetchedAt) : std::nullopt));
    writer.add(repairedUtf8(snapshot.source.value_or("")));
    writer.inside(SD_BUS_TYPE_ARRAY, "(sdx)", [&] {
      for (const UsageWindow& window : snapshot.windows) {
        writer.inside(SD_BUS_TYPE_STRUCT, "sdx", [&] {
          writer.add(repairedUtf8(window.title));
          writer.add(window.usedPercent);
          writer.add(secondsOf(window.resetsAt));
        });
      }
    });
  });
}

int DbusFigures::refresh(sd_bus_message* call, sd_bus_error* /*error*/) {
  handlers_.refreshUsage();
  return sd_bus_reply_method_return(call, "");
}

void DbusFigures::memory(BusWriter& writer) const {
  const MemorySnapshot memory = handlers_.readings().memory.value_or(MemorySnapshot());
  writer.inside(SD_BUS_TYPE_STRUCT, "ttttxs", [&] {
    for (const std::uint64_t bytes : {memory.total, memory.app, memory.wired, memory.compressed}) writer.add(bytes);
    writer.add(memory.swap ? static_cast<std::int64_t>(*memory.swap) : std::int64_t{-1});
    writer.add(std::string(pressureWord(memory.pressure)));
  });
}

int DbusFigures::watch(sd_bus_message* call, sd_bus_error* error) {
  std::vector<std::string> names;
  if (!readStrings(call, names)) return -EINVAL;
  for (const std::string& name : names) {
    if (std::ranges::find(kResources, name) != kResources.end()) continue;
    return refuse(error, "There is no property of that name.");
  }
  const std::string caller = sd_bus_message_get_sender(call);
  if (names.empty()) {
    watchers_.erase(caller);
    return sd_bus_reply_method_return(call, "");
  }
  if (watchers_.size() == kMostWatchers && !watchers_.contains(caller)) {
    return refuse(error, "Too many programs watch already.");
  }
  if (watchers_.empty()) toldReadings_ = toldOf(handlers_.readings());
  Watcher& watcher = watchers_[caller];
  watcher.names = {names.begin(), names.end()};
  watcher.presence = std::make_unique<BusNameWatch>(session_, caller, [this, caller](const std::string& owner) {
    if (owner.empty()) watchers_.erase(caller);
  });
  return sd_bus_reply_method_return(call, "");
}

}  // namespace nimbo
