// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace nimbo {

class WindowSystem;

// What ordinary windows, those with a title bar, have in common.

/// Gives the window the program's icon, if the desktop has one. Docks take theirs from the desktop file.
void setProgramIcon(QWidget& window);

/// A little above the middle, where the eye looks first, of the screen the user works on; for a window
/// that is not on the screen yet.
void placeInMiddle(QWidget& window);

/// Shows the window in front of all others, with the keyboard focus.
void bringToFront(QWidget& window, WindowSystem& windowSystem);

}  // namespace nimbo
