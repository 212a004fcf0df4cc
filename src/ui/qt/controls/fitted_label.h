// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <optional>
#include <vector>

#include "ui/controls/control_content.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {

class Theme;

/// Text that always fits its frame, on one line or wrapped. Screen readers get the whole of it.
class FittedLabel final : public QLabel {
 public:
  FittedLabel(const Theme& theme, QWidget* parent);

  void setContent(const LabelContent& content);

  /// As they are drawn.
  [[nodiscard]] const std::vector<FittedText>& lines() const { return lines_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void fit();

  const Theme& theme_;
  std::optional<LabelContent> content_;
  std::vector<FittedText> lines_;
};

}  // namespace nimbo
