// SPDX-License-Identifier: MIT
#include "app/windows/update_alerts.h"

#include <utility>

namespace nimbo {

UpdateAlerts::UpdateAlerts(UserInterface& windows, Callbacks callbacks)
    : callbacks_(std::move(callbacks)), question_(windows) {}

void UpdateAlerts::show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) {
  dismiss();
  callbacks_.willShow();
  const std::size_t last = notice.buttons.size() - 1;
  question_.ask({notice.title, notice.text, notice.buttons, last},
                [answered = std::move(answered), last](std::optional<std::size_t> button) {
                  if (answered) answered(button.value_or(last));
                });
}

}  // namespace nimbo
