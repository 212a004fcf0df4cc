// SPDX-License-Identifier: MIT
#include <algorithm>

#include "fuzz/fuzz_input.h"
#include "update/feed/update_choice.h"
#include "update/feed/update_feed_parser.h"
#include "update/feed/update_item.h"

using namespace nimbo;

// Whatever a feed says, only what is well-formed, newer and for this system comes through.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto items = parseUpdateFeed(textOf(data, size));
  if (!items) return 0;
  require(items->size() <= kMaximumFeedItems);
  for (const UpdateItem& item : *items) {
    const std::string statement = updateStatement(item);
    require(isWellFormed(item) && std::ranges::count(statement, '\n') == 8);
    const std::string name = packageFileName(item);
    require(name.ends_with(".deb") && name.find('/') == std::string::npos && name.front() != '.');
  }
  const auto chosen = chooseUpdate(*items, {"1.0", "amd64", "2.36"}, [](const UpdateItem&) { return true; });
  if (chosen) require(isNewerVersion(chosen->version, "1.0") && chosen->architecture == "amd64");
  return 0;
}
