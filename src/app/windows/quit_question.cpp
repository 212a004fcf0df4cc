// SPDX-License-Identifier: MIT
#include "app/windows/quit_question.h"

#include <utility>

namespace nimbo {

QuitQuestion::QuitQuestion(Toolkit& toolkit, MainLoop& loop, const AwakeManager& awake, std::function<void()> willShow)
    : toolkit_(toolkit), loop_(loop), awake_(awake), willShow_(std::move(willShow)) {}

void QuitQuestion::quit() {
  if (!awake_.isActive()) return loop_.quit();
  willShow_();
  if (alert_) return alert_->present();
  const AlertContent question{.title = "Keep Awake is running",
                              .text =
                                  "Quitting or installing an update ends this session. Your Mac may sleep "
                                  "afterward.",
                              .buttons = {"Keep Running", "End Session & Quit"}};
  const bool asked = toolkit_.showAlert(alert_, question, [this](std::size_t button) {
    if (button == 1) loop_.quit();
  });
  // When nobody can be asked, what the user said counts.
  if (!asked) loop_.quit();
}

}  // namespace nimbo
