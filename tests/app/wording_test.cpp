// SPDX-License-Identifier: MIT
// What the program says on macOS.
#include "app/wording_fixture.h"

namespace nimbo {
namespace {

// All texts with a word of the system; so this also shows that the walk leaves none out.
TEST_F(WordingTest, MacSaysEachTextToTheLetter) {
  walk();
  for (const char* const text :
       {"Activity Monitor ↗",
        "⌘Q",
        "CPU temperature unavailable on this Mac",
        "Memory stored on disk. Swap may remain allocated after pressure subsides.",
        "Keep Mac awake",
        "Your Mac is staying awake",
        "Off by default: the display may sleep while the Mac stays awake.",
        "Keep your MacBook’s lid open. Manual Sleep still applies. App-specific background limits still apply.",
        "macOS couldn’t keep your Mac awake (error 5). Please try again.",
        "macOS couldn’t turn the display off. Your Mac is still awake.",
        "Connect the charger to keep this Mac awake.",
        "Nimbo — keep Mac awake while work continues",
        "Nimbo — keep display on",
        "Quitting or installing an update ends this session. Your Mac may sleep afterward.",
        "Choose what appears in your menu bar.",
        "AI menu bar quotas",
        "AI menu bar fill",
        "Nimbo stays in the menu bar. Settings are saved as you change them.",
        "Approval needed in System Settings → General → Login Items. Click above to open it.",
        "A small native companion for your Mac.",
        "Widget sharing unavailable. Install a signed build with its app group configured.",
        "Your menu bar, your way",
        "Sensor availability varies by Mac.",
        "Choose menu bar content and order in General.",
        "Uses your existing Codex sign-in on this Mac.",
        "Allow Accessibility, then leave Claude’s\nSettings → Usage page open.",
        "Usage is read directly from each provider. Nimbo does not upload\n"
        "your credentials or usage to an Nimbo server. Open the AI Usage\n"
        "tab in the menu bar to see limits and reset times.",
        "Leave off to let the display sleep while your Mac works.",
        "Start or stop sessions from the Awake tab or the menu bar.\n"
        "Keep your MacBook’s lid open; manual Sleep may be refused during a session.",
        "Keep Nimbo in Applications before enabling launch at login. Permission denied",
        "Sign-in access timed out. Check Keychain access and refresh.",
        "A sign-in read is still waiting on Keychain. Check for a macOS prompt, then refresh.",
        "Install Claude Code and sign in to read usage automatically. "
        "Desktop fallback needs Accessibility access. Enable it in Nimbo Settings → AI Usage.",
        "Install Claude Code and sign in to read usage automatically. "
        "Desktop fallback: leave Claude → Settings → Usage open, then refresh.",
        "Nimbo · Resources, AI usage & Keep Awake · Keeping Mac awake"}) {
    EXPECT_TRUE(says(text)) << text;
  }
}

}  // namespace
}  // namespace nimbo
