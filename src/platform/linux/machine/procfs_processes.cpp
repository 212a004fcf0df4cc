// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_processes.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstddef>
#include <functional>

#include "base/text.h"
#include "platform/linux/machine/procfs_host_statistics.h"

namespace nimbo {
namespace {

// The file names all groups of a process ahead of its memory: up to 65,536 of ten digits.
constexpr std::size_t kLargestStatus = std::size_t{1} << 20;

// What is resident may be files for the most part. The status file tells, for less than it costs to measure a
// process of that size.
constexpr std::uint64_t kWorthAStatus = std::uint64_t{16} << 20;

/// Parses the file that `read` reads into a buffer, at first into a small one; absent when it cannot be read.
std::optional<ProcessStatus> readProcessStatus(
    const std::function<std::optional<std::string_view>(std::span<char>)>& read) {
  std::array<char, 8192> usual;
  std::string large;
  auto text = read(usual);
  if (text && text->size() == usual.size()) {
    large.resize(kLargestStatus);
    text = read(large);
  }
  return text ? std::optional(parseProcessStatus(*text)) : std::nullopt;
}

std::size_t descriptorsAllowed() {
  rlimit limit{};
  return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_cur : 0;
}

std::chrono::nanoseconds durationOf(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

/// Of a process by its folder, without its CPU time.
std::optional<ResourceUsage> memoryOf(const std::string& process) {
  ProcFile file(process + "/status");
  const auto status = readProcessStatus([&file](std::span<char> buffer) { return file.read(buffer); });
  if (!status || status->resident == 0) return std::nullopt;
  return ResourceUsage{status->footprint, status->resident, {}};
}

// The first number of schedstat: nanoseconds on a processor. Kernels without scheduler statistics do not tell.
std::chrono::nanoseconds cpuTimeOf(const std::string& process) {
  std::array<char, 128> buffer;
  auto text = ProcFile(process + "/schedstat").read(buffer).value_or(std::string_view());
  return std::chrono::nanoseconds(parseNumber(takeWord(text)).value_or(0));
}

}  // namespace

ProcessStatus parseProcessStatus(std::string_view text) {
  ProcessStatus status;
  std::optional<std::uint64_t> anonymous;
  std::uint64_t shared = 0;
  std::uint64_t swapped = 0;
  std::uint64_t huge = 0;
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, "VmRSS:")) {
      status.resident = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "RssAnon:")) {
      anonymous = parseKilobytes(*line);
    } else if (takePrefix(*line, "RssShmem:")) {
      shared = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "VmSwap:")) {
      swapped = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "HugetlbPages:")) {
      huge = parseKilobytes(*line).value_or(0);
      break;  // the last of those wanted
    }
  }
  status.footprint = anonymous.value_or(status.resident) + swapped;
  status.most = status.footprint + shared + huge;
  return status;
}

std::optional<ProcessPages> parseProcessPages(std::string_view text) {
  auto line = takeLine(text);
  if (!line) return std::nullopt;
  const auto size = parseNumber(takeWord(*line));
  const auto resident = parseNumber(takeWord(*line));
  const auto shared = parseNumber(takeWord(*line));
  if (!size || !resident || !shared) return std::nullopt;
  return ProcessPages{*resident - std::min(*resident, *shared), *resident, *size};
}

std::optional<ProcessFootprint> parseFootprint(std::string_view text) {
  std::optional<std::uint64_t> anonymous;
  std::uint64_t swap = 0;
  std::uint64_t shareable = 0;
  std::uint64_t whole = 0;
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, "Pss_Anon:")) {
      anonymous = parseKilobytes(*line);
    } else if (takePrefix(*line, "SwapPss:")) {
      swap = parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "Pss_Shmem:") || takePrefix(*line, "Private_Hugetlb:")) {
      shareable += parseKilobytes(*line).value_or(0);
    } else if (takePrefix(*line, "Anonymous:") || takePrefix(*line, "Swap:")) {
      whole += parseKilobytes(*line).value_or(0);
    }
  }
  if (!anonymous) return std::nullopt;
  return ProcessFootprint{*anonymous + swap + shareable, shareable == 0 && *anonymous + swap == whole};
}

ProcfsProcessTable::ProcfsProcessTable(std::string procRoot)
    : root_(std::move(procRoot)),
      folder_(::open(root_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
      memInfo_(root_ + "/meminfo"),
      mostKnown_(descriptorsAllowed() / 2) {}

std::vector<std::int32_t> ProcfsProcessTable::list() {
  std::array<char, 8192> buffer;
  const auto memory = memInfo_.read(buffer);
  const bool hasHugePages = !memory || memInfoField(*memory, "Hugetlb").value_or(0) > 0;
  const bool statusNeeded = hasHugePages || swapUsed(*memory) != 0;
  if (hasHugePages || statusNeeded != statusNeeded_) known_.clear();  // statm tells nothing of them
  statusNeeded_ = statusNeeded;

  std::vector<std::int32_t> pids;
  visitFolder(root_, [&](std::string_view name) {
    std::int32_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error == std::errc() && end == name.data() + name.size()) pids.push_back(pid);
  });
  std::sort(pids.begin(), pids.end());
  std::erase_if(known_, [&](const auto& known) { return !std::ranges::binary_search(pids, known.first); });
  if (!std::ranges::includes(listed_, pids)) ++births_;
  listed_ = pids;
  return pids;
}

std::optional<ProcessReading> ProcfsProcessTable::read(std::int32_t pid) {
  std::array<char, 256> buffer;
  auto known = known_.find(pid);
  auto counts = known != known_.end() ? readText(known->second.statm, buffer) : std::nullopt;
  UniqueFd opened;
  if (!counts) {
    if (known != known_.end()) {  // it has ended, and the number may be another's by now
      known_.erase(known);
      known = known_.end();
      ++births_;
    }
    opened = open(pid, "statm");
    counts = readText(opened, buffer);
  }
  const auto pages = counts ? parseProcessPages(*counts) : std::nullopt;
  if (!pages) return std::nullopt;
  if (known != known_.end() && known->second.pages == *pages) return known->second.reading;

  const auto reading = readingOf(pid, *pages);
  if (!reading) return std::nullopt;
  if (known != known_.end()) {
    known->second = {std::move(known->second.statm), *pages, *reading};
  } else if (reading->most > 0 && known_.size() < mostKnown_) {
    known_.emplace(pid, Known{std::move(opened), *pages, *reading});
  }
  return reading;
}

std::optional<ProcessReading> ProcfsProcessTable::readingOf(std::int32_t pid, const ProcessPages& pages) const {
  if (pages.size == 0) return ProcessReading{};  // a kernel thread, or one that waits to be reaped
  const auto pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  const ProcessReading reading{pages.anonymous * pageSize, pages.resident * pageSize};
  if (!statusNeeded_ && reading.most < kWorthAStatus) return reading;
  const UniqueFd file = open(pid, "status");
  const auto status = readProcessStatus([&](std::span<char> buffer) { return readText(file, buffer); });
  return status ? std::optional(ProcessReading{status->footprint, status->most}) : std::nullopt;
}

std::optional<std::uint64_t> ProcfsProcessTable::footprint(std::int32_t pid) {
  const auto known = known_.find(pid);
  if (known != known_.end() && known->second.births == births_) return known->second.footprint;
  std::array<char, 2048> buffer;
  const auto text = readText(open(pid, "smaps_rollup"), buffer);
  const auto measured = text ? parseFootprint(*text) : std::nullopt;
  if (!measured) return std::nullopt;
  if (known != known_.end() && measured->alone) {
    known->second.footprint = measured->bytes;
    known->second.births = births_;
  }
  return measured->bytes;
}

std::string ProcfsProcessTable::name(std::int32_t pid) {
  constexpr std::size_t kLongest = 15;  // that the kernel keeps
  std::array<char, 4096> buffer;
  std::string name(readText(open(pid, "comm"), buffer).value_or(std::string_view()));
  if (name.ends_with('\n')) name.pop_back();
  // A program that is started from a memfd has the name of that; before Linux 6.14 its descriptor's number.
  const bool isOfMemory = name.starts_with("memfd:") || (!name.empty() && std::ranges::all_of(name, isDigit));
  const bool isCut = name.size() == kLongest;
  if (!isOfMemory && !isCut) return name;
  auto command = readText(open(pid, "cmdline"), buffer).value_or(std::string_view());
  // The second one is the file of a script.
  for (int argument = 0; argument < 2; ++argument) {
    std::string_view file = takeUntil(command, '\0');
    file.remove_prefix(file.rfind('/') + 1);
    const bool isIt = isOfMemory ? !file.empty() : isCut && file.starts_with(name);
    if (isIt && file.size() <= NAME_MAX) return std::string(file);
  }
  return name;
}

UniqueFd ProcfsProcessTable::open(std::int32_t pid, std::string_view name) const {
  std::array<char, 32> path;
  char* const end = std::to_chars(path.data(), path.data() + path.size(), pid).ptr;
  *end = '/';
  *std::copy(name.begin(), name.end(), end + 1) = '\0';  // "smaps_rollup" at the longest
  return UniqueFd(::openat(folder_.get(), path.data(), O_RDONLY | O_CLOEXEC));
}

std::optional<ResourceUsage> readOwnUsage(std::optional<pid_t> windows, const std::string& procRoot) {
  auto usage = memoryOf(procRoot + "/self");
  rusage times{};
  if (!usage || ::getrusage(RUSAGE_SELF, &times) != 0) return std::nullopt;
  usage->cpuTime = durationOf(times.ru_utime) + durationOf(times.ru_stime);
  const std::string other = procRoot + "/" + std::to_string(windows.value_or(0));
  if (const auto more = windows ? memoryOf(other) : std::nullopt) {
    usage->physicalFootprint += more->physicalFootprint;
    usage->residentSize += more->residentSize;
    usage->cpuTime += cpuTimeOf(other);
  }
  return usage;
}

}  // namespace nimbo
