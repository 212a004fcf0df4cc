// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <string>
#include <vector>

#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// A button that shows the selected item and opens the list of all; arrow keys and letters select
/// without opening it.
class PopUpButton final : public ContentWidget<QComboBox, PopUpContent> {
 public:
  PopUpButton(const Theme& theme, ControlListener listener, QWidget* parent);

  void setContent(const PopUpContent& content);

  void showPopup() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void setItems(const std::vector<std::string>& items);

  bool reported_ = true;  ///< whether the choice in the opened list has been told
};

}  // namespace nimbo
