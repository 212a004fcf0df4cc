// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <optional>

#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

class FittedLabel;
class Theme;
class UsageBar;

/// One limit window of a card. A widget around its four parts, so that the tool tip does not go away
/// between them.
class UsageRow final : public QWidget {
 public:
  UsageRow(const Theme& theme, QWidget* parent);

  /// Frames are relative to the parent.
  void setContent(const UsageRowContent& content);

 private:
  std::optional<UsageRowContent> content_;
  FittedLabel* const title_;
  FittedLabel* const amount_;
  UsageBar* const bar_;
  FittedLabel* const reset_;
};

}  // namespace nimbo
