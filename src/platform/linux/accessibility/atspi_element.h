// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "platform/accessibility.h"
#include "platform/linux/accessibility/atspi_bus.h"

namespace nimbo {

/// An element as AT-SPI tells of it: title and description are its name and description, the value is
/// its text. Words of one line that belong to several children are one text, either as the value or, if
/// there is more than that line, as a child with nothing but this value. Numbers, such as those of
/// progress bars, are no texts. Everything is asked for once and at the same time.
[[nodiscard]] std::unique_ptr<AccessibleElement> makeAtspiElement(std::shared_ptr<AtspiBus> bus,
                                                                  AtspiReference reference);

}  // namespace nimbo
