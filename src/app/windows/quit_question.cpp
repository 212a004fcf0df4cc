// SPDX-License-Identifier: MIT
#include "app/windows/quit_question.h"

#include <fmt/format.h>

#include <utility>

namespace nimbo {

QuitQuestion::QuitQuestion(UserInterface& windows, MainLoop& loop, const AwakeManager& awake, const Wording& wording,
                           std::function<void()> willShow)
    : loop_(loop), awake_(awake), wording_(wording), willShow_(std::move(willShow)), question_(windows) {}

void QuitQuestion::quit() {
  if (!awake_.isActive()) return loop_.quit();
  willShow_();
  if (auto* const alert = question_.alert()) return alert->present();
  static constexpr std::size_t kEndAndQuit = 1;
  const AlertContent content{
      .title = "Keep Awake is running",
      .text = fmt::format("Quitting or installing an update ends this session. Your {} may sleep afterward.",
                          wording_.computer),
      .buttons = {"Keep Running", "End Session & Quit"}};
  // When nobody can be asked, what the user said counts.
  question_.ask(content, [this](std::optional<std::size_t> button) {
    if (button.value_or(kEndAndQuit) == kEndAndQuit) loop_.quit();
  });
}

void QuitQuestion::sessionChanged() {
  if (question_.alert() == nullptr || awake_.isActive()) return;
  question_.dismiss();
  loop_.quit();
}

}  // namespace nimbo
