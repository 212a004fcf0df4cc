// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>
#include <memory>
#include <optional>
#include <vector>

#include "ui/dashboard_content.h"

namespace nimbo {

class FittedLabel;
class Theme;

/// The scrolling list of processes; wheel, arrow and page keys move it. Rows are kept and filled
/// anew, so that the place scrolled to holds from one scan to the next. Its focus ring has room only
/// around it, so the page draws it.
class ProcessListView final : public QScrollArea {
 public:
  ProcessListView(const Theme& theme, QWidget* parent);
  ~ProcessListView() override;

  void setContent(const ProcessListContent& content);

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  const Theme& theme_;
  QWidget* const document_;
  std::vector<std::unique_ptr<FittedLabel>> labels_;
  std::optional<ProcessListContent> content_;
};

}  // namespace nimbo
