// SPDX-License-Identifier: MIT
// A program of one instance, for the bus to start: it writes what reaches it to the file that
// NIMBO_TEST_LOG names, until that is the link "nimbo://end".

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "platform/linux/bus/dbus_application_instance.h"
#include "support/services/bus_peer.h"

int main(int argc, char** argv) {
  const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  const char* const log = std::getenv("NIMBO_TEST_LOG");
  if (address == nullptr || log == nullptr) return 2;
  std::ofstream out(log);
  bool over = false;
  const nimbo::BusLoop loop;
  nimbo::SdBusConnection session(loop.event(), address);
  nimbo::DbusApplicationInstance instance(session);
  const auto open = [&](const std::vector<std::string>& links) {
    for (const auto& link : links) out << "open " << link << std::endl;
    over = links.back() == "nimbo://end";
  };
  const auto role = instance.claim({argv + 1, argv + argc}, {[&] { out << "activate" << std::endl; }, open});
  if (!role) return 1;
  if (*role == nimbo::InstanceRole::later) return 0;
  return loop.runUntil([&] { return over; }) ? 0 : 1;
}
