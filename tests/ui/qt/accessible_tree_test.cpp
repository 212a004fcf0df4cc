// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QContextMenuEvent>
#include <QLoggingCategory>
#include <array>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <random>

#include "ui/qt/controls/pop_up_button.h"
#include "ui/qt/dashboard/sample_usage.h"
#include "ui/qt/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

constexpr int kRounds = 10'000;
constexpr unsigned kSeed = 20'261;

int below(qsizetype end, std::minstd_rand& random) {
  return static_cast<int>(random() % static_cast<std::size_t>(end));
}

/// Asks as assistive technology does: by what it was told earlier, which may be gone or have changed.
class ScreenReader {
 public:
  explicit ScreenReader(std::minstd_rand& random) : random_(random) {}

  void hearOfWindows() {
    auto* const program = QAccessible::queryAccessibleInterface(qApp);
    for (int index = 0; index < program->childCount(); ++index) learn(program->child(index));
    learn(program);
  }

  void ask() {
    const auto known = std::next(known_.begin(), static_cast<std::ptrdiff_t>(random_() % known_.size()));
    auto* const asked = QAccessible::accessibleInterface(known->first);
    if (asked == nullptr || !asked->isValid()) {
      known_.erase(known);
      return;
    }
    const int beyond = random_() % 4 == 0 ? 20 : 1;
    switch (random_() % 8) {
      case 0:
        known->second = asked->childCount();
        return;
      case 1:
        return askForTexts(*asked);
      case 2:
        return askForPlace(*asked);
      case 3:
        return askForParent(*asked);
      case 4:
        return askForInterfaces(*asked);
      default:
        return askForChild(*asked, below(known->second + beyond, random_));
    }
  }

 private:
  void learn(QAccessibleInterface* told) {
    if (told != nullptr && told->isValid()) known_.emplace(QAccessible::uniqueId(told), told->childCount());
  }
  void askForChild(const QAccessibleInterface& asked, int index) {
    auto* const child = asked.child(index);
    ASSERT_TRUE(index < asked.childCount() || child == nullptr) << index << " of " << asked.childCount();
    learn(child);
  }
  static void askForTexts(const QAccessibleInterface& asked) {
    for (int kind = QAccessible::Name; kind <= QAccessible::Accelerator; ++kind) {
      static_cast<void>(asked.text(static_cast<QAccessible::Text>(kind)));
    }
    static_cast<void>(asked.role());
    static_cast<void>(asked.state());
  }
  void askForPlace(const QAccessibleInterface& asked) {
    const QPoint place = asked.rect().center();
    learn(asked.childAt(place.x(), place.y()));
    learn(asked.focusChild());
    static_cast<void>(asked.window());
  }
  void askForParent(const QAccessibleInterface& asked) {
    auto* const parent = asked.parent();
    if (parent != nullptr) static_cast<void>(parent->indexOfChild(&asked));
    learn(parent);
    for (const auto& relation : asked.relations()) learn(relation.first);
  }
  void askForInterfaces(QAccessibleInterface& asked) {
    if (const auto* const value = asked.valueInterface()) static_cast<void>(value->currentValue());
    if (auto* const text = asked.textInterface()) static_cast<void>(text->text(0, text->characterCount()));
    if (const auto* const cell = asked.tableCellInterface()) learn(cell->table());
    auto* const actions = asked.actionInterface();
    if (actions == nullptr) return;
    const QStringList names = actions->actionNames();
    if (!names.isEmpty()) actions->doAction(names[below(names.size(), random_)]);
  }

  std::minstd_rand& random_;
  std::map<QAccessible::Id, int> known_;  // how many children each had when it was asked
};

/// What the toolkit's bridge asks whenever something happens, also in the midst of a change.
void askAboutSource(QAccessibleEvent* event) {
  auto* const source = event->accessibleInterface();
  auto* const parent = source != nullptr && source->isValid() ? source->parent() : nullptr;
  if (parent != nullptr && parent->isValid()) static_cast<void>(parent->childCount());
}

/// The program's windows, which come, go and change at random.
class AccessibleTree : public DashboardTest {
 protected:
  void SetUp() override {
    // Assistive technology may ask for items that a list no longer has; the toolkit says so.
    QLoggingCategory::setFilterRules("default.warning=false");
    QAccessible::setActive(true);
    QAccessible::installUpdateHandler(askAboutSource);
    DashboardTest::SetUp();
    controller_.onContentChanged = [this] { render(); };
    world_.connect(controller_);
    window_->setListener([this](const ControlEvent& event) { handle(event); });
    open();
  }
  void TearDown() override {
    QAccessible::installUpdateHandler(nullptr);
    QAccessible::setActive(false);
    QLoggingCategory::setFilterRules({});
  }

  void change() {
    switch (random_() % 13) {
      case 0:
        return selectTab(random_() % 3);
      case 1:
        return controller_.showProcesses(sampleProcesses(random_() % 30));
      case 2:
        world_.usage = random_() % 2 == 0 ? sampleUsage(world_.clock.now()) : UsageStates();
        return controller_.show();
      case 3:
        return random_() % 2 == 0 ? window_->hide() : window_->show();
      case 4:
        return showSettings();
      case 5:
        if (settings_) settings_->hide();
        return;
      case 6:
        return settings_.reset();
      case 7:
        return showAlert();
      case 8:
        return alert_.reset();
      case 9:
        return withSomePopUp([](PopUpButton& popUp) { popUp.showPopup(); });
      case 10:
        return openMenuOfAField();
      case 11:
        return withSomePopUp([this](PopUpButton& popUp) { popUp.setCurrentIndex(below(popUp.count(), random_)); });
      default:
        if (QWidget* const popup = QApplication::activePopupWidget()) popup->close();
    }
  }

  std::minstd_rand random_{kSeed};  // the same changes and questions every time

 private:
  void handle(const ControlEvent& event) {
    if (event.identifier == "tabs") return selectTab(event.as<std::size_t>());
    if (event.identifier == "settings") return showSettings();
    if (event.identifier == "quit") return showAlert();
    controller_.handle(event);
  }
  void selectTab(std::size_t index) {
    constexpr std::array kTabs{DashboardTab::ai, DashboardTab::memory, DashboardTab::awake};
    controller_.open(kTabs[index]);
  }
  void showSettings() {
    if (!settings_) settings_ = interface().makeSettingsWindow();
    auto content = sampleSettings();
    if (random_() % 3 == 0) content.pages.pop_back();
    auto& controls = content.pages[0].controls;
    controls.resize(1 + random_() % controls.size());
    settings_->render(content);
    window_->hide();
    settings_->show({});
  }
  void showAlert() {
    alert_ = interface().showAlert({"Quit?", "A session is running.", {"No", "Yes"}},
                                   [this](std::optional<std::size_t> /*button*/) { alert_.reset(); });
  }
  void withSomePopUp(const std::function<void(PopUpButton&)>& act) {
    constexpr std::array kNames{"duration", "battery", "preset"};
    const QString name = kNames[random_() % kNames.size()];
    for (QWidget* const widget : QApplication::allWidgets()) {
      auto* const popUp = dynamic_cast<PopUpButton*>(widget);
      if (popUp != nullptr && popUp->objectName() == name && popUp->isVisible() && popUp->isEnabled()) act(*popUp);
    }
  }
  void openMenuOfAField() {
    if (world_.manager.isActive()) world_.manager.stopByUser();
    controller_.open(DashboardTab::awake);
    window_->show();
    const bool minutes = random_() % 2 == 0;
    child<QComboBox>("duration").setCurrentText(minutes ? "Custom minutes…" : "Until a date / time…");
    QWidget& field = child(minutes ? "minutes" : "date");
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, field.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&field, &event);
  }

  std::unique_ptr<SettingsWindow> settings_;
  std::unique_ptr<Alert> alert_;
};

TEST_F(AccessibleTree, AnswersWhateverIsAskedWhileWindowsListsAndMenusComeAndGo) {
  std::cout << "seed " << kSeed << std::endl;
  ScreenReader reader(random_);
  for (int round = 0; round < kRounds && !HasFatalFailure(); ++round) {
    if (round % 10 == 0) {
      change();
      reader.hearOfWindows();
    }
    for (int question = 0; question < 20; ++question) reader.ask();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

}  // namespace
}  // namespace nimbo
