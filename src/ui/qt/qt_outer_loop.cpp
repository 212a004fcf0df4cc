// SPDX-License-Identifier: MIT
#include "ui/qt/qt_outer_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>

namespace nimbo {

void QtOuterLoop::run(int descriptor, const std::function<void()>& dispatchPending) {
  QSocketNotifier notifier(descriptor, QSocketNotifier::Read);
  const auto dispatch = [&dispatchPending] { dispatchPending(); };
  // The notifier is the context of both connections, so both end with it.
  QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, dispatch);
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &notifier, dispatch);
  QCoreApplication::exec();
}

// Not quit(), which first asks every window to close and gives up when one refuses.
void QtOuterLoop::stop() { QCoreApplication::exit(0); }

}  // namespace nimbo
