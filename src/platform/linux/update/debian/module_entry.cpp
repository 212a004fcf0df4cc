// SPDX-License-Identifier: MIT
#include <utility>

#include "platform/linux/update/debian/debian_system.h"
#include "platform/linux/update/debian/downloads_folder.h"
#include "platform/linux/update/update_module.h"
#include "platform/posix/files/regular_file.h"
#include "update/feed/feed_update_session.h"

namespace nimbo {
namespace {

constexpr std::size_t kMaximumUserDirsBytes = 65536;

// Looked up when there is something to save, so that it is where the user wants it by then.
PackageSaver saverFor(const UpdateFolders& folders) {
  return [folders](const std::string& name, std::string_view package) {
    const auto userDirs = readRegularFile(folders.config / "user-dirs.dirs", kMaximumUserDirsBytes);
    return savePackage(downloadsFolder(userDirs.value_or(""), folders.home), name, package);
  };
}

}  // namespace
}  // namespace nimbo

extern "C" __attribute__((visibility("default"))) nimbo::UpdateSession* nimboMakeUpdateSession(
    const nimbo::UpdateSetup& setup, const nimbo::UpdateFolders& folders, nimbo::UpdateRequest request,
    std::function<void()> finished) {
  static_assert(std::is_same_v<decltype(&nimboMakeUpdateSession), nimbo::UpdateSessionEntry>);
  return new nimbo::FeedUpdateSession(setup,
                                      {nimbo::debianArchitecture(), nimbo::systemVersion(), nimbo::saverFor(folders)},
                                      request, std::move(finished));
}
