// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/power/desktop_assertion_client.h"
#include "support/fake_main_loop.h"
#include "support/fake_x11_screen.h"
#include "support/services/fake_cookie_service.h"
#include "support/services/fake_logind.h"
#include "support/services/private_bus.h"
#include "support/services/service_thread.h"

namespace nimbo {

/// A desktop made of the services that a test starts, and the client that makes use of them.
class AssertionClientTest : public ::testing::Test {
 protected:
  using Manner = FakeCookieService::Manner;
  using Service = std::unique_ptr<FakeCookieService>;

  ~AssertionClientTest() override {
    services.thaw();
    services.run([this] {
      plasma.reset();
      version.reset();
      systemd.reset();
      logind.reset();
    });
  }

  [[nodiscard]] Service start(const FakeCookieService::Kind& kind, Manner manner = Manner::grants) {
    return std::make_unique<FakeCookieService>(services, session.address(), kind, manner);
  }

  void startLogind(bool refuses = false) {
    services.run([&] {
      logind = std::make_unique<FakeLogind>(services.loop(), system.address());
      logind->refuses = refuses;
    });
  }

  /// The service manager of that version.
  void startSystemd(const char* versionText) {
    static constexpr sd_bus_vtable kTable[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_PROPERTY("Version", "s", bus_table::property<&AssertionClientTest::systemdVersion>, 0, 0),
        SD_BUS_VTABLE_END,
    };
    systemdVersion_ = versionText;
    services.run([this] {
      systemd = std::make_unique<BusPeer>(services.loop(), system.address());
      version =
          addObject(systemd->bus(), "/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager", kTable, this);
      systemd->own("org.freedesktop.systemd1");
    });
  }

  void startPlasma() {
    services.run([this] {
      plasma = std::make_unique<BusPeer>(services.loop(), session.address());
      plasma->own("org.kde.Solid.PowerManagement.PolicyAgent");
    });
  }

  /// What the locks that are held at logind are for.
  [[nodiscard]] std::vector<std::string> locks() {
    std::vector<std::string> held;
    services.run([&] {
      for (const auto& lock : logind->locks) {
        if (lock.held()) held.push_back(lock.what + " " + lock.mode + " " + lock.who + " " + lock.why);
      }
    });
    return held;
  }
  [[nodiscard]] bool lockIsLetGo() {
    bool none = false;
    services.run([&] { none = services.loop().runUntil([this] { return logind->held() == 0; }); });
    return none;
  }

  [[nodiscard]] DesktopAssertionClient& client() {
    if (!client_) {
      client_ = std::make_unique<DesktopAssertionClient>(
          DesktopAssertionClient::Means{
              {loop.event(), timers}, sessionAddress, systemAddress, x11Session ? x11.maker() : X11ScreenMaker()},
          systemBus);
    }
    return *client_;
  }
  void destroyClient() { client_.reset(); }

  [[nodiscard]] Result<std::uint32_t, PowerError> create(const char* type) {
    const auto begin = std::chrono::steady_clock::now();
    auto id = client().create(type, "a reason");
    took = std::chrono::steady_clock::now() - begin;
    return id;
  }
  [[nodiscard]] auto holdSystem() { return create(kPreventSystemSleep); }
  [[nodiscard]] auto holdDisplay() { return create(kPreventDisplaySleep); }

  PrivateBus session;
  PrivateBus system;
  std::string sessionAddress = session.address();
  std::string systemAddress = system.address();
  ServiceThread services;
  BusLoop loop;
  FakeMainLoop timers;
  sd_bus* systemBus = nullptr;  ///< by which the client asks before it has to
  bool x11Session = false;
  FakeX11Screen x11;
  std::unique_ptr<FakeLogind> logind;
  std::unique_ptr<BusPeer> plasma;
  std::unique_ptr<BusPeer> systemd;
  BusSlot version;
  std::chrono::steady_clock::duration took{};  ///< by the last creation

 private:
  [[nodiscard]] std::string systemdVersion() const { return systemdVersion_; }

  std::string systemdVersion_;
  std::unique_ptr<DesktopAssertionClient> client_;
};

/// In all, whatever hangs; the machine may be busy.
inline constexpr std::chrono::milliseconds kLongest{2500};

}  // namespace nimbo
