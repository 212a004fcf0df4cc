// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "ui/controls/control_content.h"

namespace nimbo {

/// Where a window that hangs from a status item is to be, as the bar reports it: in the bar's own units. Others find
/// their place by themselves.
struct WindowPlace {
  std::optional<Rect> item = {};    ///< the one that was clicked
  std::vector<Rect> ownItems = {};  ///< all of this program, as far as they are known
};

enum class ClosedBy {
  other,  ///< a key, a button, the window system, the program itself, a click that nobody else gets; or it could not be
          ///< shown at all
  clickElsewhere  ///< which others get, too; also another application that came to the front
};

struct WindowEvents {
  ControlListener acted = {};                    ///< what the user does with the controls; texts with every letter
  std::function<void()> becameKey = {};          ///< it has got the keyboard focus
  std::function<void(ClosedBy by)> closed = {};  ///< it has gone from the screen
};

/// A window as the program sees it. Main thread only.
template <class Content>
class ContentWindow {
 public:
  virtual ~ContentWindow() = default;

  virtual void setEvents(WindowEvents events) = 0;
  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const Content& content) = 0;

  /// Brings it to the front with the keyboard focus, or moves it.
  virtual void show(const WindowPlace& place) = 0;
  virtual void hide() = 0;
  [[nodiscard]] virtual bool visible() const = 0;

  /// Makes all of it, with the content, without showing it.
  virtual void prepare() {}
  /// False when that failed after all.
  [[nodiscard]] virtual bool prepared() const { return true; }
};

}  // namespace nimbo
