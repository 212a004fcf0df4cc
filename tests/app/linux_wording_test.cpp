// SPDX-License-Identifier: MIT
// What the program says on Linux.
#include "platform/linux/desktop/linux_wording.h"

#include <boost/pfr.hpp>

#include "app/wording_fixture.h"

namespace nimbo {
namespace {

class LinuxWordingTest : public WordingTest {
 protected:
  LinuxWordingTest() { platform.words = linuxWording("", "", {}); }
};

TEST_F(LinuxWordingTest, NoTextSpeaksOfAMac) {
  walk();
  boost::pfr::for_each_field(platform.words, [this](const auto& field) {
    if constexpr (std::is_same_v<decltype(field), const std::string&>) note(field);
  });
  for (const char* const word :
       {"Mac", "menu bar", "⌘", "⇧", "⌥", "Activity Monitor", "Keychain", "Accessibility access", "Allow Accessibility",
        "Applications folder", "in Applications", "app group", "System Settings", "Login Items"}) {
    EXPECT_EQ(said.find(word), std::string::npos) << said.substr(said.find(word) - 60, 120);
  }
}

TEST_F(LinuxWordingTest, TextsAreThoseOfALinuxDesktop) {
  walk();
  for (const char* const text :
       {"System Monitor ↗", "Ctrl+Q", "Keep computer awake", "Your computer is staying awake",
        "Keep your laptop’s lid open. Manual Sleep still applies. App-specific background limits still apply.",
        "The system couldn’t keep your computer awake (error 5). Please try again.",
        "Nimbo — keep computer awake while work continues", "Choose what appears in your tray.", "AI tray quotas",
        "Nimbo stays in the tray. Settings are saved as you change them.",
        "Check that Nimbo is still installed and your autostart folder can be written. Permission denied"}) {
    EXPECT_TRUE(says(text)) << text;
  }
}

}  // namespace
}  // namespace nimbo
