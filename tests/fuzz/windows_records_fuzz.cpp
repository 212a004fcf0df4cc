// SPDX-License-Identifier: MIT
// Records of either side, each read by the other, and answered as if a user had seen them.
#include "fuzz/fuzz_input.h"
#include "ui/remote/records.h"

using namespace nimbo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  if (const auto record = decodeForWindows(text)) {
    const std::string again = encode(*record);
    require(decodeForWindows(again).has_value() && encode(*decodeForWindows(again)) == again);
    if (const auto* const shown = std::get_if<Show<DashboardContent>>(&*record))
      (void)wording(shown->content, {"start"});
  }
  if (const auto record = decodeFromWindows(text)) {
    const std::string again = encode(*record);
    require(decodeFromWindows(again).has_value() && encode(*decodeFromWindows(again)) == again);
    const DashboardContent content;
    if (const auto* const told = std::get_if<Acted>(&*record)) (void)wording(content, told->event);
  }
  return 0;
}
