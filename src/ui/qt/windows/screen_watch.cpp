// SPDX-License-Identifier: MIT
#include "ui/qt/windows/screen_watch.h"

#include <QGuiApplication>
#include <QScreen>
#include <utility>

namespace nimbo {

ScreenWatch::ScreenWatch() {
  changed_.setSingleShot(true);
  QObject::connect(&changed_, &QTimer::timeout, &changed_, [this] { observers_.notify(); });
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

Subscription ScreenWatch::observe(std::function<void()> changed) { return observers_.add(std::move(changed)); }

}  // namespace nimbo
