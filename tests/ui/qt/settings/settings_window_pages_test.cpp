// SPDX-License-Identifier: MIT
// The window with the program's own pages in it.
#include <QComboBox>

#include "platform/mac_wording.h"
#include "support/fake_login_item.h"
#include "support/fake_user_defaults.h"
#include "ui/qt/controls/fitted_label.h"
#include "ui/qt/qt_test.h"
#include "ui/settings/settings_window_controller.h"

namespace nimbo {
namespace {

class SettingsPagesOnScreen : public QtTest {
 protected:
  void SetUp() override {
    interface().setAppearance(Appearance::light);
    controller_.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget()));
  }

  static QWidget& widget() { return topLevel("settingsWindow"); }
  /// All controls of that kind on all pages.
  template <class Control>
  static QList<Control*> all() {
    return widget().findChildren<Control*>();
  }
  static QFont stretched(const char* family, int percent) {
    QFont font(family);
    font.setStretch(percent);
    return font;
  }
  static void expectWhole(const FittedLabel& label) {
    QString drawn;
    for (const auto& line : label.lines()) {
      drawn += line.text;
      EXPECT_LE(textWidth(line.text, line.font, false), label.width()) << line.text.toStdString();
    }
    // Without the blanks, which lines may lose where they break.
    EXPECT_EQ(drawn.remove(' ').toStdString(), label.text().simplified().remove(' ').toStdString());
  }
  static double widthOf(const QString& text, double size, FontWeight weight) {
    return textWidth(text, fontFor(size, weight), false);
  }

  FakeUserDefaultsDomains domains_;
  FakeUserDefaults defaults_{domains_, "com.quellwerk.Nimbo"};
  Settings settings_{defaults_};
  BundleInfo bundle_{.identifier = {},
                     .shortVersion = "10.12.3",
                     .version = "20261121",
                     .feedUrl = {},
                     .publicKey = {},
                     .appGroup = {}};
  FakeLoginItem login_;
  std::optional<std::string> widgetMessage_;
  SettingsWindowController controller_{{settings_, bundle_, login_, macWording()},
                                       {.makeWindow = [] { return interface().makeSettingsWindow(); },
                                        .changed = [](const SettingsChange&) {},
                                        .toggleLogin = {},
                                        .checkForUpdates = {},
                                        .toggleAutomaticUpdates = {},
                                        .enableClaudeDesktop = {},
                                        .automaticUpdates = [] { return false; },
                                        .manualSleepApplies = [] { return true; },
                                        .widgetMessage = [this] { return widgetMessage_; }}};
};

/// With another font for as long as it lives.
class FontInUse {
 public:
  explicit FontInUse(const QFont& font) {
    QApplication::setFont(font);
    QCoreApplication::processEvents();
  }
  ~FontInUse() { QApplication::setFont(before_); }
  FontInUse(const FontInUse&) = delete;
  FontInUse& operator=(const FontInUse&) = delete;

 private:
  const QFont before_ = QApplication::font();
};

TEST_F(SettingsPagesOnScreen, NoLabelIsCutEvenInAFontWiderByAFifth) {
  widgetMessage_ = "Widgets are unavailable in this build. Install the signed Nimbo app to use them.";
  for (const auto status : {LoginItemStatus::enabled, LoginItemStatus::requiresApproval}) {
    login_.current = status;
    controller_.syncIfVisible();
    for (const auto& font : {stretched("Noto Sans", 100), stretched("Noto Sans", 120), stretched("DejaVu Sans", 100)}) {
      const FontInUse inUse(font);
      for (const auto* const label : all<FittedLabel>()) expectWhole(*label);
    }
  }
}

TEST_F(SettingsPagesOnScreen, TextsOnControlsFitInAFontWiderByATenth) {
  for (const auto& font : {stretched("Noto Sans", 110), stretched("DejaVu Sans", 100)}) {
    const FontInUse inUse(font);
    for (const auto* const each : all<QAbstractButton>()) {
      // Without the box, or what a button leaves free around its title.
      const int room = each->width() - (each->isCheckable() ? 27 : 20);
      const auto weight = each->isCheckable() ? FontWeight::regular : FontWeight::medium;
      EXPECT_LE(widthOf(each->text(), 13, weight), room) << each->text().toStdString();
    }
    for (const auto* const each : all<QComboBox>()) {
      for (int item = 0; item < each->count(); ++item) {
        EXPECT_LE(widthOf(each->itemText(item), 12, FontWeight::regular), each->width() - 28)
            << each->itemText(item).toStdString();
      }
    }
  }
}

}  // namespace
}  // namespace nimbo
