// SPDX-License-Identifier: MIT
#include "platform/linux/display/desktop_display_power.h"

#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/desktop/current_desktop.h"

namespace nimbo {
namespace {

// Letting go of the key or the button that asked for it must not turn the display on again.
constexpr std::chrono::milliseconds kX11Delay{700};
constexpr std::chrono::milliseconds kX11Leeway{100};

}  // namespace

DesktopDisplayPower::DesktopDisplayPower(MainLoop& loop, sd_bus* session, X11ScreenMaker makeX11Screen, Setup setup)
    : loop_(loop), session_(session), makeX11Screen_(std::move(makeX11Screen)), desktop_(std::move(setup.desktop)) {
  if (!setup.sway.commands.empty()) sway_.emplace(loop, std::move(setup.sway));
}

Result<Subscription, DisplayPowerError> DesktopDisplayPower::sleepNow(std::function<void()> failed) {
  if (!x11Screen_ && makeX11Screen_) x11Screen_ = makeX11Screen_();
  if (x11Screen_) return turnOffX11(std::move(failed));
  if (sway_) return sway_->turnOff(std::move(failed));
  auto call =
      std::make_shared<BusSlot>(callAsync(callForDesktop(), [failed = std::move(failed)](sd_bus_message* reply) {
        if (isError(reply)) failed();
      }));
  if (!*call) return tl::unexpected(DisplayPowerError{"This desktop offers no way to turn the display off."});
  return Subscription([call] { call->reset(); });
}

Subscription DesktopDisplayPower::turnOffX11(std::function<void()> failed) {
  auto timer = std::make_shared<Subscription>();
  *timer = loop_.every(kX11Delay, kX11Leeway,
                       [screen = x11Screen_, weak = std::weak_ptr(timer), failed = std::move(failed)] {
                         if (const auto once = weak.lock()) once->reset();
                         if (!screen->turnOff()) failed();
                       });
  return Subscription([timer] { timer->reset(); });
}

/// Null where nothing is known to do it.
BusMessage DesktopDisplayPower::callForDesktop() const {
  constexpr BusMethod kInvoke{"org.kde.kglobalaccel", "/component/org_kde_powerdevil", "org.kde.kglobalaccel.Component",
                              "invokeShortcut"};
  constexpr BusMethod kSetActive{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver",
                                 "SetActive"};
  if (desktopIs(desktop_, "KDE")) return methodCall(session_, kInvoke, "Turn Off Screen");
  if (desktopIs(desktop_, "GNOME")) return methodCall(session_, kSetActive, true);
  return {};
}

}  // namespace nimbo
