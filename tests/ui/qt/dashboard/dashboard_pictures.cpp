// SPDX-License-Identifier: MIT
// Saves pictures of the windows as they stand on the screen, for people to look at:
//   dashboard_pictures FOLDER [SUFFIX]
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QHelpEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <cstdio>
#include <stdexcept>

#include "platform/linux/desktop/linux_wording.h"
#include "sample_dashboard.h"
#include "sample_usage.h"
#include "support/control_events.h"
#include "support/fake_login_item.h"
#include "ui/qt/qt_user_interface.h"
#include "ui/settings/settings_window_controller.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

/// On a desktop without a program that shows all processes.
const Wording& pictureWording() {
  static const Wording wording = linuxWording("", "", {});
  return wording;
}

/// As in the United States, in the process's time zone.
class AmericanDates final : public Dates {
 public:
  [[nodiscard]] std::string shortDateAndTime(std::chrono::system_clock::time_point time) const override {
    return text(time, "M/d/yyyy, h:mm AP");
  }
  [[nodiscard]] std::string shortTime(std::chrono::system_clock::time_point time) const override {
    return text(time, "h:mm AP");
  }
  [[nodiscard]] std::string abbreviatedDateAndShortTime(std::chrono::system_clock::time_point time) const override {
    return text(time, "MMM d, yyyy, h:mm AP");
  }

 private:
  static std::string text(std::chrono::system_clock::time_point time, const char* format) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    return QDateTime::fromSecsSinceEpoch(seconds).toString(format).toStdString();
  }
};

struct Scene {
  Scene() {
    world.clock.setNow(
        std::chrono::system_clock::time_point(std::chrono::seconds{1795267800}));  // 2026-11-21 13:30 UTC
    world.connect(controller);
  }

  SampleWorld world{pictureWording()};
  AmericanDates dates;
  DashboardController controller{
      {world.settings, world.readings, world.manager, world.usage, world.clock, dates, world.wording}};
};

struct Picture {
  const char* name;
  void (*fill)(Scene& scene);
  /// Done to the window once it is on the screen.
  void (*act)(QWidget& window) = nullptr;
};

void threeProcesses(Scene& scene) { scene.world.fill(scene.controller, DashboardTab::memory, 3); }

void thirteenProcesses(Scene& scene) {
  scene.world.fill(scene.controller, DashboardTab::memory, 40);
  scene.controller.handle(pressed("more"));
}

void memoryFailed(Scene& scene) {
  scene.world.readings = sampleReadings();
  scene.world.readings.memoryFailed = true;
  scene.controller.open(DashboardTab::memory);
}

void monitoringOff(Scene& scene) {
  scene.world.fill(scene.controller, DashboardTab::memory, 0);
  scene.world.settings.setMonitorMemory(false);
  scene.world.readings.temperature.reset();
  scene.controller.show();
}

void showUsage(Scene& scene, const UsageStates& states) {
  scene.world.usage = states;
  scene.world.fill(scene.controller, DashboardTab::ai, 3);
}

void usage(Scene& scene) { showUsage(scene, sampleUsage(scene.world.clock.now())); }
void usageUnconnected(Scene& scene) { showUsage(scene, {}); }

void usageStale(Scene& scene) {
  auto states = sampleUsage(scene.world.clock.now());
  states[UsageProvider::codex].snapshot->fetchedAt -= std::chrono::hours(1);
  states[UsageProvider::claude].message = usage_messages::desktopNeedsAccessibility(pictureWording());
  showUsage(scene, states);
}

void usageRefreshing(Scene& scene) {
  auto states = sampleUsage(scene.world.clock.now());
  states[UsageProvider::codex].isRefreshing = true;
  states[UsageProvider::claude] = {true, {}, {}, true};
  showUsage(scene, states);
}

void usageMessages(Scene& scene) {
  showUsage(scene, {{UsageProvider::codex, failedState(pictureWording().signInReadTimedOut)},
                    {UsageProvider::claude, failedState(usage_messages::kDesktopUnavailable)}});
}

void usageLongMessages(Scene& scene) {
  const std::string both =
      std::string(usage_messages::kClaudeCodeGaveNoUsage) + ' ' + pictureWording().desktopShowsNothing;
  showUsage(scene, {{UsageProvider::codex, failedState(usage_messages::kNoCodexCredentials)},
                    {UsageProvider::claude, failedState(both)}});
}

void usageExtremes(Scene& scene) {
  const auto now = scene.world.clock.now();
  const auto soon = now + std::chrono::minutes(5);
  showUsage(scene, {{UsageProvider::codex,
                     connectedState({sampleWindow("5-hour", 100, soon), sampleWindow("Weekly", 98.7, soon),
                                     sampleWindow("90-minute", 0, soon)},
                                    now)},
                    {UsageProvider::claude, connectedState({sampleWindow("Sonnet weekly", 75, soon)}, now)}});
}

void awakeIdle(Scene& scene) { scene.world.fill(scene.controller, DashboardTab::awake, 3); }

void chooseDuration(Scene& scene, std::size_t index) {
  awakeIdle(scene);
  scene.controller.handle(chosen("duration", index));
}

void awakeMinutes(Scene& scene) {
  chooseDuration(scene, 5);
  scene.controller.handle(typed("minutes", ""));
}
void awakeDate(Scene& scene) { chooseDuration(scene, 6); }

void awakeRunning(Scene& scene) {
  chooseDuration(scene, 2);
  for (const auto& event :
       {switched("display", true), switched("plugged", true), chosen("battery", 2), pressed("start")}) {
    scene.controller.handle(event);
  }
}

void awakeRunningUntilDate(Scene& scene) {
  chooseDuration(scene, 6);
  scene.controller.handle(pressed("start"));
}

void awakeInputError(Scene& scene) {
  chooseDuration(scene, 5);
  scene.controller.handle(typed("minutes", "soon"));
  scene.controller.handle(pressed("start"));
}

void awakeRefused(Scene& scene) {
  scene.world.assertions.refuse("PreventUserIdleSystemSleep", 95);
  chooseDuration(scene, 0);
  scene.controller.handle(pressed("start"));
}

template <class Control>
Control* control(QWidget& window, const char* name) {
  return window.findChild<Control*>(name);
}

void scrollToEnd(QWidget& window) {
  auto& bar = *control<QScrollArea>(window, "usage")->verticalScrollBar();
  bar.setValue(bar.maximum());
}

void showRowToolTip(QWidget& window) {
  auto* const row = control<QWidget>(window, "usageRow");
  QHelpEvent event(QEvent::ToolTip, {60, 10}, row->mapToGlobal(QPoint(60, 10)));
  QCoreApplication::sendEvent(row, &event);
}

void openDurations(QWidget& window) { control<QComboBox>(window, "duration")->showPopup(); }

void openContextMenu(QWidget& window) {
  auto* const field = control<QWidget>(window, "minutes");
  QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 10}, field->mapToGlobal(QPoint(20, 10)));
  QCoreApplication::sendEvent(field, &event);
}

/// As if Tab had been pressed until there.
void focus(QWidget& window, const char* name) {
  window.setAttribute(Qt::WA_KeyboardFocusChange);
  control<QWidget>(window, name)->setFocus(Qt::TabFocusReason);
}

constexpr Picture kPictures[] = {
    {"memory-3", threeProcesses},
    {"memory-13", thirteenProcesses},
    {"memory-failed", memoryFailed},
    {"memory-off", monitoringOff},
    {"usage", usage},
    {"usage-unconnected", usageUnconnected},
    {"usage-stale", usageStale},
    {"usage-refreshing", usageRefreshing},
    {"usage-messages", usageMessages},
    {"usage-long-messages", usageLongMessages},
    {"usage-extremes", usageExtremes},
    {"usage-end", usage, scrollToEnd},
    {"usage-tip", usage, showRowToolTip},
    {"usage-focus-cards", usage, [](QWidget& window) { focus(window, "usage"); }},
    {"usage-focus-link", usage, [](QWidget& window) { focus(window, "link.codex"); }},
    {"usage-focus-connect", usageUnconnected, [](QWidget& window) { focus(window, "connect.codex"); }},
    {"awake-idle", awakeIdle},
    {"awake-minutes", awakeMinutes},
    {"awake-date", awakeDate},
    {"awake-running", awakeRunning},
    {"awake-running-date", awakeRunningUntilDate},
    {"awake-input-error", awakeInputError},
    {"awake-refused", awakeRefused},
    {"awake-list", awakeIdle, openDurations},
    {"awake-menu", awakeMinutes, openContextMenu},
    {"awake-focus-date", awakeDate, [](QWidget& window) { focus(window, "date"); }},
    {"awake-focus-minutes", awakeMinutes, [](QWidget& window) { focus(window, "minutes"); }},
    {"awake-focus-box", awakeIdle, [](QWidget& window) { focus(window, "plugged"); }},
    {"awake-focus-list", awakeIdle, [](QWidget& window) { focus(window, "battery"); }}};

void runLoopFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

QWidget& topLevel(const char* name) {
  for (QWidget* const candidate : QApplication::topLevelWidgets()) {
    if (candidate->objectName() == name) return *candidate;
  }
  throw std::logic_error(name);
}

bool saveScreen(const QRect& part, const QString& path) {
  runLoopFor(std::chrono::milliseconds(400));
  return QGuiApplication::primaryScreen()->grabWindow(0, part.x(), part.y(), part.width(), part.height()).save(path);
}

bool save(QtUserInterface& interface, const Picture& picture, const QString& path) {
  Scene scene;
  picture.fill(scene);
  const auto window = interface.makeMenuWindow();
  const auto& content = scene.controller.content();
  constexpr double kMargin = 24;
  window->render(content);
  window->setFrame({kMargin, kMargin, content.size.width, content.size.height});
  window->show();
  runLoopFor(std::chrono::milliseconds(200));
  if (picture.act != nullptr) picture.act(topLevel("dashboard"));
  return saveScreen({0, 0, qRound(content.size.width + 2 * kMargin), qRound(content.size.height + 2 * kMargin)}, path);
}

bool saveAlert(UserInterface& interface, const QString& path) {
  const auto alert =
      interface.showAlert({"Keep Awake is running",
                           "Quitting or installing an update ends this session. Your computer may sleep afterward.",
                           {"Keep Running", "End Session & Quit"}},
                          {});
  return saveScreen(topLevel("alert").frameGeometry().adjusted(-16, -40, 16, 16), path);
}

struct SettingsPicture {
  const char* name;
  SettingsTab tab;
  void (*act)(QWidget& window) = nullptr;
  LoginItemStatus loginStatus = LoginItemStatus::enabled;
  bool widgetsUnavailable = false;
};

constexpr SettingsPicture kSettingsPictures[] = {
    {"settings-general", SettingsTab::general},
    {"settings-general-long", SettingsTab::general, nullptr, LoginItemStatus::requiresApproval, true},
    {"settings-monitors", SettingsTab::monitors},
    {"settings-usage", SettingsTab::usage},
    {"settings-awake", SettingsTab::awake},
    {"settings-list", SettingsTab::general,
     [](QWidget& window) { control<QComboBox>(window, "tabOrder")->showPopup(); }},
    {"settings-focus-tabs", SettingsTab::general, [](QWidget& window) { focus(window, "tabs"); }},
    {"settings-focus-box", SettingsTab::monitors, [](QWidget& window) { focus(window, "cpu"); }},
    {"settings-focus-list", SettingsTab::general, [](QWidget& window) { focus(window, "preset"); }},
    {"settings-focus-button", SettingsTab::usage, [](QWidget& window) { focus(window, "enableClaudeDesktop"); }}};

bool saveSettings(UserInterface& interface, const SettingsPicture& picture, const QString& path) {
  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "com.quellwerk.Nimbo"};
  Settings settings(defaults);
  BundleInfo bundle;
  bundle.shortVersion = "1.0";
  bundle.version = "1";
  FakeLoginItem login;
  login.current = picture.loginStatus;
  SettingsWindowController::Callbacks callbacks;
  callbacks.makeWindow = [&interface] { return interface.makeSettingsWindow(); };
  callbacks.automaticUpdates = [] { return false; };
  callbacks.manualSleepApplies = [] { return true; };
  callbacks.widgetMessage = [&picture]() -> std::optional<std::string> {
    if (!picture.widgetsUnavailable) return std::nullopt;
    return pictureWording().widgetsUnavailable;
  };
  SettingsWindowController controller({settings, bundle, login, pictureWording()}, callbacks);
  controller.show(picture.tab);
  QWidget& widget = topLevel("settingsWindow");
  constexpr QMargins kRoom{24, 24, 24, 24};
  widget.move(kRoom.left(), kRoom.top());
  runLoopFor(std::chrono::milliseconds(200));
  if (picture.act != nullptr) picture.act(widget);
  return saveScreen(widget.geometry().marginsAdded(kRoom), path);
}

int savePictures(const QDir& folder, const QString& suffix) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  const auto made = QtUserInterface::make();
  if (!made || !folder.mkpath(".")) {
    std::fputs("No display or no folder.\n", stderr);
    return 1;
  }
  const auto& interface = *made;
  for (const auto appearance : {Appearance::light, Appearance::dark}) {
    interface->setAppearance(appearance);
    const auto path = [&](const char* name) {
      return folder.filePath(
          QString("%1-%2%3.png").arg(name, appearance == Appearance::light ? "light" : "dark", suffix));
    };
    for (const auto& picture : kPictures) {
      if (!save(*interface, picture, path(picture.name))) return 1;
    }
    for (const auto& picture : kSettingsPictures) {
      if (!saveSettings(*interface, picture, path(picture.name))) return 1;
    }
    if (!saveAlert(*interface, path("alert"))) return 1;
  }
  return 0;
}

}  // namespace
}  // namespace nimbo

int main(int count, char** arguments) {
  if (count < 2) {
    std::fputs("usage: dashboard_pictures FOLDER [SUFFIX]\n", stderr);
    return 2;
  }
  return nimbo::savePictures(QDir(arguments[1]), count > 2 ? arguments[2] : "");
}
