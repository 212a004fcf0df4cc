// SPDX-License-Identifier: MIT
#pragma once

#include "ui/controls/control_content.h"

namespace nimbo {

/// What the Keep Awake page shows. All of it is hidden on the other pages; frames are relative to the
/// dashboard.
struct AwakePageContent {
  LabelContent state;
  LabelContent detail;
  ButtonContent start;
  ButtonContent extend;
  LabelContent durationTitle;
  PopUpContent duration;
  TextFieldContent minutes;
  DatePickerContent date;
  CheckBoxContent display;
  CheckBoxContent plugged;
  LabelContent batteryTitle;
  PopUpContent battery;
  ButtonContent off;
  LabelContent note;
  bool operator==(const AwakePageContent&) const = default;
};

}  // namespace nimbo
