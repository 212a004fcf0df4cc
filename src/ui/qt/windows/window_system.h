// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QWindow>
#include <functional>
#include <memory>
#include <string>

#include "base/result.h"
#include "base/subscription.h"
#include "platform/windows_process.h"
#include "ui/main_menu.h"

class QWidget;

namespace nimbo {

/// Where a menu window hangs, for window systems that know better than the window how far their panels reach.
struct Hanging {
  Qt::Edge edge = Qt::TopEdge;  ///< of the screen
  QPoint item = {};             ///< its upper left corner
  int gap = 0;                  ///< between the window and the panel there, in points
  bool unsure = false;          ///< its place along the edge is a guess; that of the pointer would tell
  std::function<void(QPointF place)> pointerFound = {};
};

/// What windows need of the window system and the toolkit does not offer. Made after the
/// toolkit's application object. Main thread only.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  /// Whether windows may have translucent corners now.
  [[nodiscard]] virtual bool compositing() const = 0;

  /// Whether a menu window has a shadow only if it draws one itself, in a margin that compositing makes translucent.
  [[nodiscard]] virtual bool menusDrawShadows() const { return false; }

  /// Tells whoever manages and composes windows that so much at the edges of `window` is no part of it: it is neither
  /// counted nor given a shadow.
  virtual void announceMargins(QWidget& /*window*/, const QMargins& /*margins*/) {}

  /// Whether a popup hears of clicks on every other window, and the pointer's place is known over them. If not, menu
  /// windows are ordinary ones and close when they lose the keyboard focus.
  [[nodiscard]] virtual bool popupsHearAllClicks() const = 0;

  /// Where they do not: a transparent window, hidden as yet, that lies over all others and over the panels, too. Null
  /// where none does.
  [[nodiscard]] virtual std::unique_ptr<QWindow> makeClickCatcher() { return nullptr; }

  /// Whether no other program holds the pointer or the keyboard, as one does while a button that was
  /// pressed on it is down. Not to be asked by a window that holds them itself.
  [[nodiscard]] virtual bool inputIsFree() = 0;

  /// Takes the pointer from all windows until let go. Not for a program of which a window has it.
  [[nodiscard]] virtual Subscription holdPointer() { return {}; }

  /// Tells when a window of another application becomes the active one or is clicked. Nothing where the toolkit's own
  /// keyboard focus tells that.
  [[nodiscard]] virtual Subscription observeOtherActivation(std::function<void()> activated) = 0;

  /// Gives a window its frame, or one as near to that as the window system lets it.
  virtual void hang(QWidget& window, const QRect& frame, const Hanging& hanging) = 0;

  /// How much at each edge of `screen` is kept free for panels, which the toolkit does not tell when there are several
  /// screens. All in the window system's own pixels.
  [[nodiscard]] virtual QMargins panelMargins(const QRect& /*screen*/) const { return {}; }

  /// Gives the keyboard focus to a window that the user asked for, perhaps in another program such as
  /// the panel.
  virtual void activate(QWidget& window) = 0;

  /// Shows the program's menu where the system shows that of the application in front; for the rest of the run. False
  /// where there is no such place.
  [[nodiscard]] virtual bool showMenu(const MenuListener& /*chosen*/) { return false; }
};

[[nodiscard]] std::unique_ptr<WindowSystem> makeWindowSystem();

/// What the toolkit has to know before its application object is made.
void prepareToolkit();

/// The toolkit's name for the window system to use, or why there is none. To be asked first: the toolkit ends the
/// process when it finds no display.
[[nodiscard]] Result<std::string, WindowsEnd> reachablePlatform();

// What ordinary windows, those with a title bar, have in common.

/// Gives the window the program's icon, if the desktop has one. Docks take theirs from the desktop file.
void setProgramIcon(QWidget& window);

/// A little above the middle, where the eye looks first, of the screen the user works on; for a window
/// that is not on the screen yet.
void placeInMiddle(QWidget& window);

/// The height in points that the panels of the screen leave to a window's content. The window is on that screen, or
/// not on any yet: then it is the one that the user works on.
[[nodiscard]] int heightForContent(const QWidget& window);

/// Shows the window in front of all others, with the keyboard focus.
void bringToFront(QWidget& window, WindowSystem& windowSystem);

/// Brings the alert to the front that is to be answered before anything else. False when there is none.
[[nodiscard]] bool presentAlert(WindowSystem& windowSystem);

}  // namespace nimbo
