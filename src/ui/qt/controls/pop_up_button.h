// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <functional>
#include <optional>

#include "ui/controls/control_content.h"

class QAccessibleInterface;

namespace nimbo {

class Theme;

/// A button that shows the selected item and opens the list of all; arrow keys and letters select
/// without opening it.
class PopUpButton final : public QComboBox {
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

  const Theme& theme_;
  std::optional<PopUpContent> content_;
  bool reported_ = true;  ///< what was chosen since the list was opened
};

/// To be installed as the toolkit's accessibility factory: the toolkit's own interface calls a
/// pop-up by the selected item and not by its name.
[[nodiscard]] QAccessibleInterface* makeAccessiblePopUp(const QString& className, QObject* object);

}  // namespace nimbo
