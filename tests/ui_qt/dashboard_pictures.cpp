// SPDX-License-Identifier: MIT
// Saves pictures of the dashboard as it stands on the screen, for people to look at:
//   dashboard_pictures FOLDER [SUFFIX]
#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <cstdio>

#include "sample_dashboard.h"
#include "ui/qt/qt_user_interface.h"

namespace nimbo {
namespace {

struct Picture {
  const char* name;
  void (*fill)(DashboardController& controller);
};

void threeProcesses(DashboardController& controller) { fillDashboard(controller, DashboardTab::memory, 3); }

void thirteenProcesses(DashboardController& controller) {
  fillDashboard(controller, DashboardTab::memory, 40);
  controller.expandClicked();
}

void memoryFailed(DashboardController& controller) {
  controller.apply({.lastDashboardTab = DashboardTab::memory});
  auto sample = sampleReadings();
  sample.memoryFailed = true;
  controller.update(sample);
  controller.updateProcesses({});
}

void monitoringOff(DashboardController& controller) {
  auto preferences = samplePreferences(DashboardTab::memory);
  preferences.monitorMemory = false;
  controller.apply(preferences);
  controller.update(sampleReadings());
  controller.updateTemperature({});
}

void aiTab(DashboardController& controller) { fillDashboard(controller, DashboardTab::ai, 3); }

constexpr Picture kPictures[] = {{"memory-3", threeProcesses},
                                 {"memory-13", thirteenProcesses},
                                 {"memory-failed", memoryFailed},
                                 {"memory-off", monitoringOff},
                                 {"ai", aiTab}};

void runLoopFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

bool save(UserInterface& interface, const Picture& picture, Appearance appearance, const QString& path) {
  interface.setAppearance(appearance);
  DashboardController controller;
  picture.fill(controller);
  const auto window = interface.makeDashboardWindow();
  const auto& content = controller.content();
  constexpr double kMargin = 24;
  window->render(content);
  window->setFrame({kMargin, kMargin, content.size.width, content.size.height});
  window->show();
  runLoopFor(std::chrono::milliseconds(400));
  const auto shot = QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, qRound(content.size.width + 2 * kMargin),
                                                                 qRound(content.size.height + 2 * kMargin));
  return shot.save(path);
}

int savePictures(const QDir& folder, const QString& suffix) {
  const auto interface = QtUserInterface::make();
  if (!interface || !folder.mkpath(".")) {
    std::fputs("No display or no folder.\n", stderr);
    return 1;
  }
  for (const auto& picture : kPictures) {
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
      const char* const look = appearance == Appearance::light ? "light" : "dark";
      const QString path = folder.filePath(QString("%1-%2%3.png").arg(picture.name, look, suffix));
      if (!save(*interface, picture, appearance, path)) return 1;
    }
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
