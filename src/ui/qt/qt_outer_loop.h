// SPDX-License-Identifier: MIT
#pragma once

#include "platform/main_loop.h"

namespace nimbo {

/// The toolkit's event loop as the outer one. Nothing called from it may run a nested event loop
/// (modal dialogs, menus that wait): the inner main loop would stand still meanwhile.
class QtOuterLoop final : public OuterLoop {
 public:
  void run(int descriptor, const std::function<void()>& dispatchPending) override;
  void stop() override;
};

}  // namespace nimbo
