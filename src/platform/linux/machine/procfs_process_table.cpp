// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_process_table.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

#include "platform/linux/machine/meminfo.h"
#include "platform/linux/machine/process_status.h"

namespace nimbo {

ProcfsProcessTable::ProcfsProcessTable(std::string procRoot)
    : root_(std::move(procRoot)),
      folder_(::open(root_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
      memInfo_(root_ + "/meminfo") {}

std::vector<std::int32_t> ProcfsProcessTable::list() {
  statusNeeded_ = swapInUse();
  std::vector<std::int32_t> pids;
  visitFolder(root_, [&](std::string_view name) {
    std::int32_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error == std::errc() && end == name.data() + name.size()) pids.push_back(pid);
  });
  return pids;
}

std::optional<ProcessReading> ProcfsProcessTable::read(std::int32_t pid) {
  return statusNeeded_ ? readStatus(pid) : readResident(pid);
}

bool ProcfsProcessTable::swapInUse() {
  std::array<char, 8192> buffer;
  const auto text = memInfo_.read(buffer);
  return !text || swapUsed(*text) != 0;
}

std::optional<ProcessReading> ProcfsProcessTable::readStatus(std::int32_t pid) const {
  auto status = readProcessStatus([&](std::span<char> buffer) { return readFile(pid, "status", buffer); });
  return status ? std::optional(ProcessReading{status->footprint, std::move(status->name)}) : std::nullopt;
}

std::optional<ProcessReading> ProcfsProcessTable::readResident(std::int32_t pid) const {
  std::array<char, 256> buffer;
  const auto counts = readFile(pid, "statm", buffer);
  const auto pages = counts ? parseAnonymousPages(*counts) : std::nullopt;
  if (!pages) return std::nullopt;

  ProcessReading reading;
  reading.footprint = *pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  if (reading.footprint > 0) {
    auto name = readFile(pid, "comm", buffer).value_or(std::string_view());
    if (name.ends_with('\n')) name.remove_suffix(1);
    reading.name = name;
  }
  return reading;
}

std::optional<std::string_view> ProcfsProcessTable::readFile(std::int32_t pid, std::string_view name,
                                                             std::span<char> buffer) const {
  std::array<char, 32> path;
  char* const end = std::to_chars(path.data(), path.data() + path.size(), pid).ptr;
  *end = '/';
  *std::copy(name.begin(), name.end(), end + 1) = '\0';  // "status" at the longest
  const UniqueFd file(::openat(folder_.get(), path.data(), O_RDONLY | O_CLOEXEC));
  if (!file) return std::nullopt;
  const ssize_t size = ::read(file.get(), buffer.data(), buffer.size());
  if (size <= 0) return std::nullopt;
  return std::string_view(buffer.data(), static_cast<std::size_t>(size));
}

}  // namespace nimbo
