// SPDX-License-Identifier: MIT
#include "app/tray/notices.h"

#include <utility>

namespace nimbo {

Notices::Notices(Workspace& workspace, std::function<void()> changed)
    : workspace_(workspace), changed_(std::move(changed)) {}

void Notices::tell(const std::string& title, const std::string& text) {
  workspace_.notify(title, text);
  latest_ = title + ": " + text;
  changed_();
}

void Notices::clear() {
  if (std::exchange(latest_, {}).empty()) return;
  changed_();
}

StatusItemContent Notices::withLatest(StatusItemContent content) const {
  if (!latest_.empty()) content.toolTip = latest_ + "\n\n" + content.toolTip;
  return content;
}

}  // namespace nimbo
