// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "command/command_line.h"
#include "platform/clock.h"
#include "platform/foreground_programs.h"
#include "platform/host_statistics.h"
#include "platform/process_table.h"
#include "platform/temperature_sensor.h"
#include "remote_control/remote_control.h"

namespace nimbo {

/// What commands end with; a command that `awake run` ran gives its own.
enum class CommandStatus {
  done = 0,
  failed = 1,      ///< or refused
  misused = 2,     ///< the arguments are not understood
  notRunning = 3,  ///< there is no running program, and the command needs one
};

/// What is to be kept awake for.
struct ForegroundHold {
  std::string name;
  bool keepDisplayOn = false;
  bool interruptible = false;        ///< by the terminal; else the work hears of that by itself
  std::function<void()> terminated;  ///< this process is asked to end before the work is done
  std::function<int()> work;
};

/// What commands need of the system, each made when it is wanted.
struct CommandServices {
  std::function<RunningProgram&()> program;
  ForegroundPrograms& programs;
  const Clock& clock;
  std::function<HostStatistics&()> host;
  std::function<ProcessTable&()> processes;
  std::function<TemperatureSensor&()> temperature;
  /// Keeps awake in this process while the work runs, and gives what it gives; else one sentence.
  std::function<Result<int, std::string>(const ForegroundHold& hold)> holdHere;
  /// Reads the allowances in this process, which may take a minute.
  std::function<Result<UsageStates, RemoteError>()> readUsageHere;
  std::string version;
  std::function<void(const std::string& text)> print;     ///< as it is
  std::function<void(const std::string& line)> complain;  ///< one line
};

/// Runs it and gives the exit status.
[[nodiscard]] int runCommand(const Command& command, const CommandServices& services);

}  // namespace nimbo
