// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <vector>

#include "ui/qt/controls/content_widget.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {

/// Text that always fits its frame, on one line or wrapped. Screen readers get the whole of it.
class FittedLabel final : public ContentWidget<QLabel, LabelContent> {
 public:
  FittedLabel(const Theme& theme, QWidget* parent, const char* name = "");

  void setContent(const LabelContent& content);

  /// As they are drawn.
  [[nodiscard]] const std::vector<FittedText>& lines() const { return lines_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void fit();

  std::vector<FittedText> lines_;
};

}  // namespace nimbo
