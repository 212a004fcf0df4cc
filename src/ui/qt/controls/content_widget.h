// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <QString>
#include <QWidget>
#include <optional>
#include <string>
#include <utility>

#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {

// Each part of showContent() belongs to the contents that have such a field.

/// What a screen reader calls the control: the name made for that, or else the visible title.
template <class Content>
[[nodiscard]] std::string spokenName(const Content& content) {
  std::string name;
  if constexpr (requires { content.accessibleName; }) name = content.accessibleName;
  if constexpr (requires { name = content.title; }) return name.empty() ? content.title : name;
  return name;
}

/// The text as a label of a control that would take "&" for the mark of a key.
[[nodiscard]] inline QString withoutMnemonics(const std::string& text) {
  return QString::fromStdString(text).replace('&', "&&");
}

/// Only when it is another one: the toolkit announces the same name again.
inline void setSpokenName(QWidget& widget, const std::string& name) {
  const QString wanted = QString::fromStdString(name);
  if (widget.accessibleName() != wanted) widget.setAccessibleName(wanted);
}

/// Shows `text` as it is, wrapped to a readable width; never as markup, because names of processes
/// come from elsewhere. Screen readers get it as the description.
inline void setPlainToolTip(QWidget& widget, const std::string& text) {
  const QString plain = QString::fromStdString(text);
  if (widget.accessibleDescription() == plain) return;
  // Only markup is wrapped by the toolkit.
  widget.setToolTip(text.empty() ? QString() : "<qt>" + plain.toHtmlEscaped().replace('\n', "<br>") + "</qt>");
  widget.setAccessibleDescription(plain);
}

/// Takes over what contents have in common. The widget reaches `around` the content's frame.
template <class Content>
void showContent(QWidget& widget, const Content& content, const QMargins& around = {}) {
  widget.setGeometry(toQRect(content.frame) + around);
  if constexpr (requires { content.identifier; }) widget.setObjectName(QString::fromStdString(content.identifier));
  if constexpr (requires { content.toolTip; }) setPlainToolTip(widget, content.toolTip);
  if (const auto name = spokenName(content); !name.empty()) setSpokenName(widget, name);
  if constexpr (requires { content.enabled; }) widget.setEnabled(content.enabled);
  if constexpr (requires { content.visible; }) widget.setVisible(content.visible);
  widget.update();
}

/// Takes a control away, but not at once: it may be what the user is pressing. Its deletion is asked for by an event,
/// because outside of these it would wait for an event loop of the toolkit's own, which some programs do not have.
inline void discard(QWidget& control) {
  control.setObjectName({});
  control.hide();
  QMetaObject::invokeMethod(&control, &QObject::deleteLater, Qt::QueuedConnection);
}

/// A widget of the toolkit that draws one content after another.
template <class Widget, class Content>
class ContentWidget : public Widget {
 public:
  /// `listener` gets what the user does with it.
  ContentWidget(const Theme& theme, QWidget* parent, ControlListener listener = {})
      : Widget(parent), theme_(theme), listener_(std::move(listener)) {}

 protected:
  /// To be called last for a content that differs from the one before.
  void take(const Content& content, const QMargins& around = {}) {
    content_ = content;
    showContent(*this, content, around);
  }

  /// Tells what the user has done.
  void report(const ControlValue& value = {}) const {
    if (listener_) listener_({this->objectName().toStdString(), value});
  }

  const Theme& theme_;
  const ControlListener listener_;
  std::optional<Content> content_;  ///< absent until the first one
};

}  // namespace nimbo
