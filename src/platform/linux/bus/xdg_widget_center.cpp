// SPDX-License-Identifier: MIT
#include "platform/linux/bus/xdg_widget_center.h"

#include "platform/linux/bus/program_address.h"
#include "platform/posix/files/atomic_file.h"

namespace nimbo {
namespace {

constexpr const char* kWidgetsInterface = "com.quellwerk.Nimbo.Widgets";

bool isFolderName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

}  // namespace

std::optional<std::filesystem::path> XdgWidgetCenter::container(const std::string& appGroup) const {
  return isFolderName(appGroup) ? std::optional(dataFolder_ / appGroup) : std::nullopt;
}

bool XdgWidgetCenter::writeAtomically(const std::filesystem::path& file, std::string_view contents) const {
  return !writeFileAtomically(file, contents, AtomicFile::Links::refuse);
}

void XdgWidgetCenter::reloadTimelines(const std::string& kind) {
  if (session_ == nullptr) return;
  sd_bus_emit_signal(session_, kProgramPath, kWidgetsInterface, "TimelinesReloaded", "s", kind.c_str());
}

}  // namespace nimbo
