// SPDX-License-Identifier: MIT
#include "fuzz/fuzz_input.h"
#include "platform/linux/machine/hwmon_temperature_sensor.h"
#include "platform/linux/machine/procfs_host_statistics.h"
#include "platform/linux/machine/procfs_processes.h"
#include "support/fake_clock.h"
#include "support/fake_host_statistics.h"
#include "system/system_sampler.h"

using namespace nimbo;

// What the kernel's files say becomes figures that can be shown: parts of a whole, and finite.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);

  FakeClock clock;
  FakeHostStatistics host;
  SystemSampler sampler(host, clock);
  host.counts = parseMemInfo(text, parseZramUsed(text).value_or(0), parseArcCache(text));
  if (const auto memory = sampler.snapshot()) require(memory->used() + memory->cached <= memory->total);
  (void)swapUsed(text);
  (void)parsePressure(text);

  for (const auto end : {text.size() / 2, text.size()}) {
    host.ticks = parseCpuTicks(text.substr(text.size() - end));
    if (const auto busy = sampler.cpuUsage()) require(*busy >= 0 && *busy <= 1);
  }

  (void)parseProcessStatus(text);
  (void)parseProcessPages(text);
  (void)parseFootprint(text);
  if (const auto degrees = parseMillidegrees(text)) require(*degrees - *degrees == 0);
  return 0;
}
