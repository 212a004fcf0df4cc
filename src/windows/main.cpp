// SPDX-License-Identifier: MIT
// The program that shows the windows, for the one that has the tray: see ui/remote.
#include <sys/prctl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>
#include <string>
#include <string_view>

#include "platform/linux/windows/record_socket.h"
#include "platform/linux/windows/windows_launcher.h"
#include "ui/qt/qt_user_interface.h"
#include "ui/remote/windows_host.h"

namespace nimbo {
namespace {

int showWindows(DisplayNeed need) {
  const auto interface = QtUserInterface::make(need);
  if (!interface) return interface.error() == WindowsEnd::noWaylandPlugin ? kNoWaylandPlugin : kNoDisplay;
  const RecordSocket socket{UniqueFd(STDIN_FILENO)};
  WindowsHost host(**interface, [&socket](const std::string& record) {
    if (!socket.send(record)) QCoreApplication::exit(EXIT_FAILURE);
  });
  const auto receive = [&socket, &host] {
    std::string record;
    const auto received = socket.receive(record);
    if (received == RecordSocket::Received::ended) QCoreApplication::exit(EXIT_SUCCESS);
    if (received == RecordSocket::Received::record && !host.receive(record)) QCoreApplication::exit(EXIT_FAILURE);
  };
  const QSocketNotifier notifier(socket.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, receive);
  return QCoreApplication::exec();
}

}  // namespace
}  // namespace nimbo

int main(int argc, char** argv) {
  // Without the other program there is nobody to show anything for. Not even a stopped process stays.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::prctl(PR_SET_NAME, "nimbo-windows");
  const bool optional = argc > 1 && std::string_view(argv[1]) == "optional";
  return nimbo::showWindows(optional ? nimbo::DisplayNeed::optional : nimbo::DisplayNeed::required);
}
