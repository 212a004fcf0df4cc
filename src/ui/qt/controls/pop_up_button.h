// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <functional>
#include <string>
#include <vector>

#include "ui/qt/controls/content_widget.h"

namespace nimbo {

/// A button that shows the selected item and opens the list of all; arrow keys and letters select
/// without opening it.
class PopUpButton final : public ContentWidget<QComboBox, PopUpContent> {
 public:
  /// `selected` is called for the user's choices only.
  PopUpButton(const Theme& theme, std::function<void(std::size_t index)> selected, QWidget* parent);

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
