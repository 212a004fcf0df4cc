// SPDX-License-Identifier: MIT
#include "app/windows/user_interface_maker.h"

#include <fmt/format.h>

#include <cstdio>
#include <string>

namespace nimbo {
namespace {

/// Tells the same trouble only once: the user may click again and again.
class Complaint {
 public:
  void say(const std::string& text) {
    if (text == said_) return;
    fmt::print(stderr, "nimbo: {}\n", text);
    said_ = text;
  }

 private:
  std::string said_;
};

}  // namespace

UserInterfaceMaker userInterfaceFromModule(ModuleLoader& loader, DisplayNeed need) {
  return [&loader, need, complaint = std::make_shared<Complaint>()]() -> std::unique_ptr<UserInterface> {
    const auto symbol = loader.symbol("nimbo-ui", kUserInterfaceEntryName);
    if (!symbol) {
      complaint->say("the windows cannot be loaded: " + symbol.error().message);
      return nullptr;
    }
    std::unique_ptr<UserInterface> interface(reinterpret_cast<UserInterfaceEntry>(*symbol)(need));
    if (!interface) complaint->say("no display can be reached, so no window can be shown");
    return interface;
  };
}

}  // namespace nimbo
