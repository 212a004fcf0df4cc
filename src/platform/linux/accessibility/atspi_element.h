// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/accessibility.h"
#include "platform/linux/accessibility/atspi_bus.h"
#include "platform/linux/accessibility/hypertext.h"

namespace nimbo {

/// An element as AT-SPI tells of it: title and description are its name and description, the value is
/// its text. Words of one line that belong to several children are one text, either as the value or, if
/// there is more than that line, as a child with nothing but this value. Numbers, such as those of
/// progress bars, are no texts. Everything is asked for once and at the same time.
class AtspiElement final : public AccessibleElement {
 public:
  AtspiElement(std::shared_ptr<AtspiBus> bus, AtspiReference reference);

  [[nodiscard]] std::optional<std::string> title() override;
  [[nodiscard]] std::optional<std::string> description() override;
  [[nodiscard]] std::optional<std::string> value() override;
  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) override;

 private:
  struct Facts {
    std::optional<std::string> name;
    std::optional<std::string> description;
    std::optional<std::string> text;
    std::vector<AtspiReference> children;
    bool isInLine = false;
  };
  /// The children, and how the text holds them; as they are if that cannot be told.
  struct Arrangement {
    std::vector<std::unique_ptr<AtspiElement>> children;
    std::optional<std::vector<HypertextPiece>> pieces;
  };

  const Facts& facts(Deadline deadline);
  void forget();
  Arrangement& arrangement(Deadline deadline, int depth);
  [[nodiscard]] HypertextChild asHypertext(Deadline deadline, int depth);
  [[nodiscard]] std::optional<std::string> onlyLine(Deadline deadline, int depth);

  const std::shared_ptr<AtspiBus> bus_;
  const AtspiReference reference_;
  std::optional<Facts> facts_;
  std::optional<Arrangement> arrangement_;
};

}  // namespace nimbo
