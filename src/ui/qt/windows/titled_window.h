// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <functional>
#include <utility>

class QAccessibleInterface;

namespace nimbo {

class WindowSystem;

/// An ordinary window with a title bar that can be closed and minimised, but not resized. Closing hides
/// it.
class TitledWindow final : public QWidget {
 public:
  explicit TitledWindow(WindowSystem& windowSystem);

  /// `becameKey` is called whenever the window gets the keyboard focus.
  void setBecameKey(std::function<void()> becameKey) { becameKey_ = std::move(becameKey); }

  /// Brings it to the front with the keyboard focus; the first time in the middle of the screen, later
  /// where it was.
  void present();

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  WindowSystem& windowSystem_;
  std::function<void()> becameKey_;
  bool placed_ = false;
};

/// To be installed as the toolkit's accessibility factory: the toolkit's own interface calls a window
/// a mere filler.
[[nodiscard]] QAccessibleInterface* makeAccessibleTitledWindow(const QString& className, QObject* object);

}  // namespace nimbo
