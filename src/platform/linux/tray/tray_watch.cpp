// SPDX-License-Identifier: MIT
#include "platform/linux/tray/tray_watch.h"

#include <algorithm>
#include <utility>

namespace nimbo {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPause{250};
constexpr milliseconds kPauseLeeway{50};
constexpr milliseconds kPatience{5000};
constexpr milliseconds kPatienceLeeway{500};

}  // namespace

TrayWatch::TrayWatch(sd_bus* session, MainLoop& loop)
    : loop_(loop),
      watcher_(session, "org.kde.StatusNotifierWatcher", [this](const std::string& owner) { trayChanged(owner); }) {}

Subscription TrayWatch::attend(std::function<void(const std::string& tray)> turn) {
  const auto attendant = std::make_shared<Attendant>(Attendant{std::move(turn)});
  attendants_.push_back(attendant);
  nextTurn();
  return Subscription([this, attendant] { attendants_.remove(attendant); });
}

void TrayWatch::onAbsence(std::function<void()> absent) {
  if (!tray_.empty()) return;
  patience_ = loop_.every(kPatience, kPatienceLeeway, [this, absent = std::move(absent)] {
    const auto tell = absent;
    patience_.reset();
    tell();
  });
}

void TrayWatch::trayChanged(const std::string& owner) {
  tray_ = owner;
  pause_.reset();
  if (!tray_.empty()) patience_.reset();
  const auto attendants = attendants_;
  for (const auto& attendant : attendants) {
    if (std::exchange(attendant->hadTurn, false)) attendant->turn({});
  }
  nextTurn();
}

void TrayWatch::nextTurn() {
  if (tray_.empty() || pause_) return;
  const auto next = std::ranges::find_if(attendants_, [](const auto& attendant) { return !attendant->hadTurn; });
  if (next == attendants_.end()) return;
  pause_ = loop_.every(kPause, kPauseLeeway, [this] {
    pause_.reset();
    nextTurn();
  });
  const auto attendant = *next;  // it may leave in its turn
  attendant->hadTurn = true;
  attendant->turn(tray_);
}

}  // namespace nimbo
