// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/subscription.h"
#include "platform/template_image.h"

namespace nimbo {

/// What one status item shows.
struct StatusItemContent {
  /// Short text beside the image, where the bar shows one; empty in an item that has one at other times.
  std::optional<std::string> title;
  TemplateImage image;
  std::string toolTip;         ///< plain text, may hold line breaks
  std::string accessibleName;  ///< what a screen reader calls the item
  bool operator==(const StatusItemContent&) const = default;
};

/// One line of a status item's menu.
struct MenuEntry {
  enum class Kind { action, separator };
  Kind kind = Kind::action;
  std::string title;
  bool enabled = true;
  std::string keyEquivalent;  ///< one character pressed with the system's menu modifier; empty for none
  std::function<void()> action;
};

struct StatusMenu {
  std::string title;
  std::vector<MenuEntry> entries;
};

struct StatusClick {
  /// Whether the click asks for the item's direct action (Option on macOS; the middle button where
  /// the bar reports no modifiers) instead of the dashboard.
  bool alternate = false;
  /// Where the item, or at least the pointer, was, in global screen coordinates with y downwards;
  /// absent when the bar did not say or said something impossible.
  std::optional<Rect> anchor;
};

/// How a bar tells an item from others.
struct StatusItemName {
  std::string identifier;      ///< the same across restarts: lower-case letters and dashes
  std::optional<int> place{};  ///< from 0, among all that there may be, for bars that sort; absent for an item alone
  std::string arrangement{};   ///< names the order of all, for bars that remember it; empty for the usual one
  bool operator==(const StatusItemName&) const = default;
};

/// Answers for one status item, all of them set. All on the main thread.
struct StatusItemHandlers {
  std::function<void(const StatusClick&)> clicked;
  /// A secondary click: builds the menu that is about to open.
  std::function<StatusMenu()> menuWillOpen;
  /// The menu opened by the last `menuWillOpen` has closed.
  std::function<void()> menuDidClose;
  /// The menu that would open now, for bars that read it ahead; nothing opens.
  std::function<StatusMenu()> menuPreview;
  /// Bars that know where the item is tell its place, as in `StatusClick`, when it has one and when that is another.
  std::function<void(const Rect& place)> moved;
};

/// One item in the menu bar or tray; destroying it removes it. Main thread only.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Tells the bar what changed, and nothing when nothing did.
  virtual void setContent(const StatusItemContent& content) = 0;

  /// Marks the item while the dashboard hangs from it.
  virtual void setHighlighted(bool highlighted) = 0;
};

/// How a bar lines its items up, as the reader goes.
enum class ItemOrder { oldestFirst, newestFirst };

/// The menu bar or tray. Items may be made before a tray exists; they appear when it does and
/// again whenever it restarts. Main thread only.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// The bar outlives its items.
  [[nodiscard]] virtual std::unique_ptr<StatusItem> makeItem(StatusItemName name, StatusItemContent content,
                                                             StatusItemHandlers handlers) = 0;

  /// Whether the items' titles are seen; if not, a picture has to say it all.
  [[nodiscard]] virtual bool showsTitles() const = 0;

  [[nodiscard]] virtual ItemOrder itemOrder() const = 0;

  /// Tells when it has changed, before a new bar has any item.
  [[nodiscard]] virtual Subscription observeItemOrder(std::function<void()> changed) = 0;

  /// Calls `absent` once if a few seconds from now there is still no bar, with what the user can do about that.
  virtual void onAbsence(std::function<void(const std::string& advice)> absent) = 0;
};

}  // namespace nimbo
