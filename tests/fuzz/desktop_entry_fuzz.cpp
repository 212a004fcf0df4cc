// SPDX-License-Identifier: MIT
#include <string>

#include "fuzz/fuzz_input.h"
#include "platform/linux/desktop/desktop_entry.h"

using namespace nimbo;

// Entries of others, and what is written into an entry of ours, which comes back as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  if (const auto entry = DesktopEntry::parse(text)) {
    (void)entry->flag("Hidden");
    (void)entry->list("OnlyShowIn");
    if (const auto command = entry->command("/nowhere")) require(!command->empty());
  }

  if (text.find('\0') != std::string_view::npos) return 0;
  const std::string command = "/bin/sh " + quotedForExec(text);
  const auto own = DesktopEntry::parse("[Desktop Entry]\nExec=" + escapedForEntry(command) + "\n");
  require(own && own->text("Exec") == command);
  const auto words = own->command("");
  require(words && words->size() == 2 && words->back() == text);
  return 0;
}
