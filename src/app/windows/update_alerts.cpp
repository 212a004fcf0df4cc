// SPDX-License-Identifier: MIT
#include "app/windows/update_alerts.h"

#include <utility>

namespace nimbo {

UpdateAlerts::UpdateAlerts(Toolkit& toolkit, MainLoop& loop, std::function<void()> willShow)
    : toolkit_(toolkit), loop_(loop), willShow_(std::move(willShow)) {}

void UpdateAlerts::show(const UpdateNotice& notice, Answer answered) {
  dismiss();
  const std::size_t last = notice.buttons.size() - 1;
  auto* const interface = toolkit_.interface();
  if (interface == nullptr) {
    unseen_ = std::make_shared<Answer>(std::move(answered));
    loop_.post([weak = std::weak_ptr(unseen_), last] {
      const auto unseen = weak.lock();
      if (unseen && *unseen) (*unseen)(last);
    });
    return;
  }
  willShow_();
  alert_ = interface->showAlert({notice.title, notice.text, notice.buttons, last},
                                [this, answered = std::move(answered)](std::size_t button) {
                                  const auto answer = answered;  // goes with the alert
                                  alert_.reset();
                                  if (answer) answer(button);
                                });
}

void UpdateAlerts::dismiss() {
  alert_.reset();
  unseen_.reset();
}

}  // namespace nimbo
