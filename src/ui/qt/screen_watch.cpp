// SPDX-License-Identifier: MIT
#include "ui/qt/screen_watch.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace nimbo {

ScreenWatch::ScreenWatch() {
  changed_.setSingleShot(true);
  QObject::connect(&changed_, &QTimer::timeout, &changed_, [this] { notify(); });
  const auto changed = [this] { changed_.start(0); };
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &changed_, [this, changed](QScreen* screen) {
    watch(*screen);
    changed();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &changed_, changed);
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &changed_, changed);
  for (QScreen* const screen : QGuiApplication::screens()) watch(*screen);
}

void ScreenWatch::watch(QScreen& screen) {
  const auto changed = [this] { changed_.start(0); };
  QObject::connect(&screen, &QScreen::geometryChanged, &changed_, changed);
  QObject::connect(&screen, &QScreen::availableGeometryChanged, &changed_, changed);
}

Subscription ScreenWatch::observe(std::function<void()> changed) {
  const int id = nextObserver_++;
  observers_->emplace(id, std::move(changed));
  return Subscription([observers = std::weak_ptr(observers_), id] {
    if (const auto alive = observers.lock()) alive->erase(id);
  });
}

void ScreenWatch::notify() {
  // An observer may end its own subscription or another's.
  for (const auto& [id, changed] : Observers(*observers_)) {
    if (observers_->contains(id)) changed();
  }
}

}  // namespace nimbo
