// SPDX-License-Identifier: MIT
#include "update/feed/update_notices.h"

namespace nimbo::update_notices {
UpdateNotice checking() { return {"Checking for updates…", "", {"Cancel"}}; }

UpdateNotice available(const std::string& version, const std::string& installed) {
  return {
      "Nimbo " + version + " is available",
      "You have " + installed + ". The update is saved in your Downloads folder, where you install it when you like.",
      {"Download", "Later"}};
}

UpdateNotice downloading(const std::string& version) { return {"Downloading Nimbo " + version + "…", "", {"Cancel"}}; }

UpdateNotice ready(const std::string& version) {
  return {"Nimbo " + version + " is ready to install",
          "The package is in your Downloads folder. Open it there to install the update.",
          {"Show in Folder", "Done"}};
}

UpdateNotice nothing(NoUpdate why, const std::string& installed) {
  if (why == NoUpdate::untrusted) {
    return failedCheck("The update server offers a version that isn’t signed as it should be, so it was left alone.");
  }
  const std::string scope = why == NoUpdate::otherSystem ? " for this system." : ".";
  return {"You’re up to date", "Nimbo " + installed + " is the newest version" + scope, {"OK"}};
}

UpdateNotice failedCheck(const std::string& reason) { return {"Couldn’t check for updates", reason, {"OK"}}; }

UpdateNotice failedDownload(const std::string& version, const std::string& reason) {
  return {"Couldn’t download Nimbo " + version, reason, {"OK"}};
}

std::string notSaved(std::error_code why) {
  return "It couldn’t be saved in your Downloads folder: " + why.message() + ".";
}

}  // namespace nimbo::update_notices
