// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QTimer>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/controls/control_content.h"
#include "ui/user_interface.h"

namespace nimbo {

class DashboardButton;
class FittedLabel;
class Theme;
class WindowSystem;

/// An alert in a dialog window of its own, above all other windows, which do nothing until it is answered. It never
/// waits: the answer comes from the event loop, after the window is gone from the screen.
class QtAlert final : public QDialog, public Alert {
 public:
  QtAlert(const Theme& theme, WindowSystem& windowSystem, const AlertContent& content, AlertAnswer answered);

  void present() override;

  /// Escape and the window's close button.
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  // Each returns where its part ends.
  double placeText(const Theme& theme, const LabelContent& content, const char* name);
  double placeButtons(const Theme& theme, const std::vector<std::string>& titles, double top);
  void answer(std::size_t button);

  WindowSystem& windowSystem_;
  const std::size_t cancel_;
  const AlertAnswer answered_;
  std::optional<std::size_t> pressed_;
  QTimer answerTimer_;
};

}  // namespace nimbo
