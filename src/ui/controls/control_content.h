// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "base/geometry.h"

namespace nimbo {

/// Colours by meaning; each has one value for light and one for dark appearance. All but quaternaryLabel,
/// separator and cardGround are opaque.
enum class ColorRole {
  // Read as small text on `background` and on a card, too.
  label,
  secondaryLabel,
  tertiaryLabel,
  teal,
  indigo,
  orange,
  green,
  red,
  blue,

  orangeFill,       ///< the orange of bars, where that of texts would look brown
  quaternaryLabel,  ///< behind the bars of charts
  background,       ///< of windows and menus
  cardGround,       ///< of a card on the background
  separator,        ///< thin lines: a panel's border and the one above its footer
  // What is on, selected or pressed by Return, and the text on it. Not the desktop's accent colour, so
  // that the contrast is always enough.
  accentGround,
  accentLabel,
  fieldGround,  ///< inside fields and check boxes that are off
  fieldBorder,  ///< around them; strong enough to tell where they are
};

enum class FontWeight { regular, medium, semibold };
enum class TextAlignment { left, right };

struct TextStyle {
  double size = 13;  ///< points
  FontWeight weight = FontWeight::regular;
  ColorRole color = ColorRole::label;
  TextAlignment alignment = TextAlignment::left;
  bool monospacedDigits = false;
  bool operator==(const TextStyle&) const = default;
};

// Frames are in points from the top left corner of the page.

struct LabelContent {
  Rect frame;
  TextStyle style;
  std::string text = {};
  std::string toolTip = {};
  bool visible = true;
  int lines = 1;  ///< with more than one the text wraps from the top of the frame
  bool operator==(const LabelContent&) const = default;
};

enum class ButtonLook { rounded, inlined, icon };

struct ButtonContent {
  std::string identifier;  ///< stable name for tests and assistive technology
  Rect frame;
  ButtonLook look = ButtonLook::rounded;
  double textSize = 13;
  std::string title = {};           ///< the visible text, or the name of the symbol for `icon`
  std::string accessibleName = {};  ///< what a screen reader says; the title when empty
  std::string toolTip = {};
  std::string keyEquivalent = {};  ///< one letter pressed with Command (Control on Linux); empty for none
  bool visible = true;
  bool enabled = true;
  bool operator==(const ButtonContent&) const = default;
};

struct CheckBoxContent {
  std::string identifier;
  Rect frame;
  std::string title = {};
  std::string toolTip = {};
  bool on = false;
  bool visible = true;
  bool enabled = true;
  bool operator==(const CheckBoxContent&) const = default;
};

/// A button that opens a list of which one item is selected.
struct PopUpContent {
  std::string identifier;
  Rect frame;
  std::vector<std::string> items = {};
  std::size_t selected = 0;
  std::string accessibleName = {};
  bool visible = true;
  bool enabled = true;
  bool operator==(const PopUpContent&) const = default;
};

struct TextFieldContent {
  std::string identifier;
  Rect frame;
  std::string text = {};
  std::string placeholder = {};
  std::string accessibleName = {};
  std::string toolTip = {};
  bool visible = true;
  bool enabled = true;
  bool operator==(const TextFieldContent&) const = default;
};

/// A field with a stepper for day, hour and minute in the user's time zone.
struct DatePickerContent {
  std::string identifier;
  Rect frame;
  std::chrono::system_clock::time_point date = {};
  std::string accessibleName = {};
  bool visible = true;
  bool enabled = true;
  bool operator==(const DatePickerContent&) const = default;
};

/// A row of segments of which one is selected.
struct TabsContent {
  Rect frame;
  std::vector<std::string> labels;
  std::size_t selected = 0;
  bool operator==(const TabsContent&) const = default;
};

/// A window has one row of segments; events name it so.
inline constexpr const char* kTabsIdentifier = "tabs";

/// What the user gave a control: nothing by pressing it, or its state, the index of an item, a text, a date.
using ControlValue =
    std::variant<std::monostate, bool, std::size_t, std::string, std::chrono::system_clock::time_point>;

/// What the user did with a control.
struct ControlEvent {
  std::string identifier;
  ControlValue value = {};

  /// The value, or an empty one where it is of another kind.
  template <class Value>
  [[nodiscard]] Value as() const {
    const auto* const given = std::get_if<Value>(&value);
    return given != nullptr ? *given : Value{};
  }
  bool operator==(const ControlEvent&) const = default;
};

using ControlListener = std::function<void(const ControlEvent& event)>;

}  // namespace nimbo
