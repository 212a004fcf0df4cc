// SPDX-License-Identifier: MIT
#include "app/windows/update_alerts.h"

#include <utility>

namespace nimbo {

UpdateAlerts::UpdateAlerts(Toolkit& toolkit, MainLoop& loop, std::function<void()> willShow)
    : toolkit_(toolkit), loop_(loop), willShow_(std::move(willShow)) {}

void UpdateAlerts::show(const UpdateNotice& notice, std::function<void(std::size_t button)> answered) {
  dismiss();
  willShow_();
  const auto answer = [answered = std::move(answered)](std::size_t button) {
    if (answered) answered(button);
  };
  const std::size_t last = notice.buttons.size() - 1;
  if (toolkit_.showAlert(alert_, {notice.title, notice.text, notice.buttons, last}, answer)) return;
  unseen_.emplace();
  loop_.post(unseen_->guard([answer, last] { answer(last); }));
}

void UpdateAlerts::dismiss() {
  alert_.reset();
  unseen_.reset();
}

}  // namespace nimbo
