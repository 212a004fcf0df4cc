// SPDX-License-Identifier: MIT
#include "command/run_command.h"

#include <cstdlib>
#include <utility>

#include "command/report.h"
#include "system/process_scan.h"
#include "system/system_sampler.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kScanInterval{5};

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
    return show(wanted.form, RemotePart::awake, "awake", [this] { return reported(program().awake(), now()); });
  }

  int operator()(const AwakeRun& run) const {
    const std::string& path = run.command.front();
    return keepAwake({.name = path.substr(path.find_last_of('/') + 1),
                      .keepDisplayOn = run.keepDisplayOn,
                      .interruptible = false,
                      .terminated = [this] { services_.programs.terminate(); },
                      .work = [&] { return ended(services_.programs.run(run.command)); }});
  }

  int operator()(const AwakeWhile& live) const {
    std::vector<std::string> names;
    for (const auto process : live.processes) {
      if (auto name = services_.programs.nameOf(process); !name.empty()) names.push_back(std::move(name));
    }
    return keepAwake({.name = joined(names),
                      .keepDisplayOn = live.keepDisplayOn,
                      .interruptible = true,
                      .terminated = [] { std::_Exit(EXIT_SUCCESS); },  // what is held goes with it
                      .work =
                          [&] {
                            const auto waited = services_.programs.waitFor(live.processes);
                            return waited ? 0 : failed(waited.error());
                          }});
  }

  int operator()(const UsageReport& wanted) const {
    return show(wanted.form, RemotePart::usage, "usage", [this, &wanted] {
      auto states = program().usage();
      const bool here = !states && states.error().kind == RemoteError::Kind::notRunning && !wanted.form.watch;
      return reported(here ? services_.readUsageHere() : std::move(states), now());
    });
  }

  int operator()(const MemoryReport& wanted) const {
    return show(wanted.form, RemotePart::readings, "memory", [this, &wanted]() -> Result<Report, RemoteError> {
      if (wanted.form.watch) return reported(program().readings());
      SystemSampler sampler(services_.host(), services_.clock);
      SystemReadings readings;
      readings.memory = sampler.snapshot();
      readings.memoryFailed = !readings.memory;
      readings.temperature = services_.temperature().temperature();
      if (const auto told = program().readings()) readings.cpu = told->cpu;
      return reportOf(readings);
    });
  }

  int operator()(const ProcessesReport& wanted) const {
    const auto look = [this, &wanted]() -> Result<Report, RemoteError> {
      ProcessScan scan = scanProcesses(services_.processes(), wanted.count);
      if (scan.processes.size() > wanted.count) scan.processes.resize(wanted.count);
      return reportOf(scan.processes);
    };
    if (!wanted.form.watch) return show(wanted.form, {}, "processes", look);
    Line line(services_, wanted.form);
    do {
      line.print(*look());
    } while (services_.programs.isReadFor(kScanInterval));
    return static_cast<int>(CommandStatus::done);
  }

  int operator()(const ShowHelp& /*help*/) const { return print(helpText()); }
  int operator()(const ShowVersion& /*version*/) const { return print("nimbo " + services_.version + "\n"); }

 private:
  /// What is printed again and again, when it is another.
  class Line {
   public:
    Line(const CommandServices& services, const Form& form) : services_(services), form_(form) {}

    void print(const Report& report) {
      std::string line = (form_.json ? report.json() : report.text) + "\n";
      if (line == last_) return;
      services_.print(line);
      last_ = std::move(line);
    }

   private:
    const CommandServices& services_;
    const Form form_;
    std::string last_;
  };

  template <class Value, class... More>
  [[nodiscard]] static Result<Report, RemoteError> reported(const Result<Value, RemoteError>& answer, More... more) {
    return answer.map([more...](const Value& value) { return reportOf(value, more...); });
  }

  /// `look` makes a report, named `name`, of what that part of the program tells.
  template <class Look>
  [[nodiscard]] int show(const Form& form, RemotePart part, const char* name, const Look& look) const {
    if (form.watch) {
      Line line(services_, form);
      return after(program().watch(part, [&] {
        const Result<Report, RemoteError> report = look();
        line.print(report ? *report : Report{.level = "absent", .error = report.error().message, .name = name});
      }));
    }
    const Result<Report, RemoteError> report = look();
    if (!report) return failed(report.error());
    if (report->error) return failed(*report->error);
    if (form.json) return print(report->json() + "\n");
    if (!form.brief) return print(report->page(services_.programs.showsColours()));
    return print(report->text.empty() ? "" : report->text + "\n");
  }

  [[nodiscard]] ReportTime now() const { return services_.clock.now(); }
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
