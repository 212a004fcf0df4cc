// SPDX-License-Identifier: MIT
#include "command/run_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "base/size_text.h"
#include "command/time_words.h"
#include "system/process_scan.h"
#include "system/system_sampler.h"

namespace nimbo {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;  // of the JSON, see docs/commands.md
constexpr int kBarLength = 20;

/// "██████░░░░"
std::string bar(double part) {
  std::string text;
  const auto filled = std::lround(std::clamp(part, 0.0, 1.0) * kBarLength);
  for (int place = 0; place < kBarLength; ++place) text += place < filled ? "█" : "░";
  return text;
}

std::string jsonLine(const char* name, Json value) {
  const Json document{{"version", kFormat}, {name, std::move(value)}};
  return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::string statusText(const AwakeStatus& status, std::chrono::system_clock::time_point now) {
  if (!status.active) return status.message.empty() ? "Off.\n" : fmt::format("Off. {}\n", status.message);
  std::string text = "On";
  if (status.own) text += status.endsAt ? " until " + clockTime(*status.endsAt, now) : " until stopped";
  if (!status.holders.empty()) text += " for " + joined(status.holders);
  text += status.keepsDisplayOn ? ". Display stays on." : ". Display may sleep.";
  return text + (status.message.empty() ? "" : " " + status.message) + "\n";
}

class Runner {
 public:
  explicit Runner(const CommandServices& services) : services_(services) {}

  int operator()(const AwakeOn& on) const { return after(program().start(on.until, on.keepDisplayOn)); }
  int operator()(const AwakeOff& /*off*/) const { return after(program().stop()); }
  int operator()(const AwakeExtend& extend) const { return after(program().extend(extend.by)); }
  int operator()(const QuitProgram& /*quit*/) const { return after(program().act("quit")); }

  int operator()(const OpenPage& open) const {
    if (open.page == "settings") return after(program().act("settings"));
    if (open.page.empty()) return after(program().open({}));
    return after(program().open({"nimbo://" + open.page}));
  }

  int operator()(const AwakeReport& wanted) const {
    const auto status = program().awake();
    if (!status) return failed(status.error());
    if (!wanted.json) return print(statusText(*status, services_.clock.now()));
    Json awake{{"active", status->active},
               {"own", status->own},
               {"endsAt", status->endsAt ? Json(isoTime(*status->endsAt)) : Json(nullptr)},
               {"keepsDisplayOn", status->keepsDisplayOn},
               {"message", status->message},
               {"holders", status->holders}};
    return print(jsonLine("awake", std::move(awake)));
  }

  int operator()(const AwakeRun& run) const {
    const std::string& path = run.command.front();
    return keepAwake({.name = path.substr(path.find_last_of('/') + 1),
                      .keepDisplayOn = run.keepDisplayOn,
                      .interruptible = false,
                      .work = [&] { return ended(services_.programs.run(run.command)); }});
  }

  int operator()(const AwakeWhile& live) const {
    std::vector<std::string> names;
    for (const auto process : live.processes) {
      if (auto name = services_.programs.nameOf(process); !name.empty()) names.push_back(std::move(name));
    }
    return keepAwake({.name = joined(names), .keepDisplayOn = live.keepDisplayOn, .interruptible = true, .work = [&] {
                        const auto waited = services_.programs.waitFor(live.processes);
                        return waited ? 0 : failed(waited.error());
                      }});
  }

  int operator()(const MemoryReport& wanted) const {
    SystemSampler sampler(services_.host(), services_.clock);
    const auto memory = sampler.snapshot();
    if (!memory) return failed("The system’s memory cannot be read.");
    const auto celsius = services_.temperature().temperature();
    if (wanted.json) {
      return print(jsonLine("memory", {{"totalBytes", memory->total},
                                       {"usedBytes", memory->used()},
                                       {"availableBytes", memory->available()},
                                       {"appBytes", memory->app},
                                       {"wiredBytes", memory->wired},
                                       {"compressedBytes", memory->compressed},
                                       {"swapUsedBytes", orNull(memory->swap)},
                                       {"pressure", pressureWord(memory->pressure)},
                                       {"cpuTemperatureCelsius", orNull(celsius)}}));
    }
    return print(
        fmt::format("Memory       {} {:.0f} %, {} of {}\n"
                    "Available    {}\n"
                    "Swap used    {}\n"
                    "Pressure     {}\n"
                    "CPU          {}\n",
                    bar(memory->usedFraction()), memory->usedFraction() * 100, gigabytesText(memory->used()),
                    gigabytesText(memory->total), gigabytesText(memory->available()),
                    memory->swap ? gigabytesText(*memory->swap) : "unavailable", pressureWord(memory->pressure),
                    celsius ? fmt::format("{:.0f} °C", *celsius) : "temperature unavailable"));
  }

  int operator()(const ProcessesReport& wanted) const {
    ProcessScan scan = scanProcesses(services_.processes(), wanted.count);
    if (scan.processes.size() > wanted.count) scan.processes.resize(wanted.count);
    if (wanted.json) {
      Json list = Json::array();
      for (const auto& process : scan.processes) {
        list.push_back({{"pid", process.pid}, {"name", process.name}, {"bytes", process.bytes}});
      }
      return print(jsonLine("processes", std::move(list)));
    }
    std::string text;
    for (const auto& process : scan.processes) {
      text += fmt::format("{:>9}  {:>7}  {}\n", footprintText(process.bytes), process.pid, process.name);
    }
    return print(text);
  }

  int operator()(const ShowHelp& /*help*/) const { return print(helpText()); }
  int operator()(const ShowVersion& /*version*/) const { return print("nimbo " + services_.version + "\n"); }

 private:
  [[nodiscard]] RunningProgram& program() const { return services_.program(); }

  [[nodiscard]] int print(const std::string& text) const {
    services_.print(text);
    return static_cast<int>(CommandStatus::done);
  }

  [[nodiscard]] int failed(const std::string& why) const {
    services_.complain(why);
    return static_cast<int>(CommandStatus::failed);
  }
  [[nodiscard]] int failed(const RemoteError& error) const {
    const int status = failed(error.message);
    return error.kind == RemoteError::Kind::notRunning ? static_cast<int>(CommandStatus::notRunning) : status;
  }
  [[nodiscard]] int after(const Result<void, RemoteError>& answer) const {
    return answer ? static_cast<int>(CommandStatus::done) : failed(answer.error());
  }
  [[nodiscard]] int ended(const Result<int, std::string>& status) const {
    return status ? *status : failed(status.error());
  }

  /// By the running program, and without one by this process.
  [[nodiscard]] int keepAwake(const ForegroundHold& hold) const {
    const auto held = program().hold(hold.name, hold.keepDisplayOn);
    if (held) return hold.work();
    if (held.error().kind == RemoteError::Kind::refused) return failed(held.error());
    return ended(services_.holdHere(hold));
  }

  const CommandServices& services_;
};

}  // namespace

int runCommand(const Command& command, const CommandServices& services) {
  return std::visit(Runner(services), command);
}

}  // namespace nimbo
