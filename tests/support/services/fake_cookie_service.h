// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "support/services/service_thread.h"

namespace nimbo {

/// A service of the desktop that hands out cookies, such as a session manager. It remembers who
/// has which and forgets those of a client that leaves the bus.
class FakeCookieService {
 public:
  struct Kind {
    const char* name;
    const char* path;
    const char* interface;
    const char* release;
    bool takesFlags;
  };
  static constexpr Kind kSessionManager = {"org.gnome.SessionManager", "/org/gnome/SessionManager",
                                           "org.gnome.SessionManager", "Uninhibit", true};
  static constexpr Kind kPowerManagement = {"org.freedesktop.PowerManagement",
                                            "/org/freedesktop/PowerManagement/Inhibit",
                                            "org.freedesktop.PowerManagement.Inhibit", "UnInhibit", false};
  static constexpr Kind kScreenSaver = {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                        "org.freedesktop.ScreenSaver", "UnInhibit", false};

  enum class Manner { grants, refuses, answersGarbage, staysSilent, vanishes };

  struct Cookie {
    std::uint32_t number = 0;
    std::string client;
    std::string application;
    std::string reason;
    std::uint32_t flags = 0;
  };

  FakeCookieService(ServiceThread& thread, std::string address, const Kind& kind, Manner manner = Manner::grants)
      : thread_(thread), address_(std::move(address)), kind_(kind), manner_(manner) {
    start();
  }
  ~FakeCookieService() { stop(); }
  FakeCookieService(const FakeCookieService&) = delete;
  FakeCookieService& operator=(const FakeCookieService&) = delete;

  void start() {
    thread_.run([this] { appear(); });
  }
  /// Its process ends, and with it all cookies.
  void stop() {
    thread_.run([this] { vanish(); });
  }

  void setManner(Manner manner) {
    const std::scoped_lock lock(mutex_);
    manner_ = manner;
  }

  [[nodiscard]] std::vector<Cookie> held() const {
    const std::scoped_lock lock(mutex_);
    return held_;
  }

  /// How often it was called for a cookie, and to take one back.
  [[nodiscard]] int asked() const {
    const std::scoped_lock lock(mutex_);
    return asked_;
  }
  [[nodiscard]] int givenBack() const {
    const std::scoped_lock lock(mutex_);
    return givenBack_;
  }

  /// Waits, without turning the test's loop.
  [[nodiscard]] bool heldBecomes(std::size_t count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return held_.size() == count; });
  }
  [[nodiscard]] bool askedBecomes(int count) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return asked_ == count; });
  }

 private:
  void appear() {
    peer_ = std::make_unique<BusPeer>(thread_.loop(), address_);
    sd_bus_slot* slot = nullptr;
    sd_bus_add_object(peer_->bus(), &slot, kind_.path, onCall, this);
    object_.reset(slot);
    clients_ = addMatch(peer_->bus(),
                        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                        "member='NameOwnerChanged',arg2=''",
                        [this](sd_bus_message* signal) {
                          const char* client = nullptr;
                          sd_bus_message_read(signal, "sss", &client, nullptr, nullptr);
                          forget([&](const Cookie& cookie) { return cookie.client == client; });
                        });
    peer_->own(kind_.name);
  }

  void vanish() {
    clients_.reset();
    object_.reset();
    peer_.reset();
    forget([](const Cookie&) { return true; });
  }

  void forget(const std::function<bool(const Cookie&)>& which) {
    const std::scoped_lock lock(mutex_);
    held_.erase(std::remove_if(held_.begin(), held_.end(), which), held_.end());
    changed_.notify_all();
  }

  // Not a table of methods: libsystemd would hold back answers of a wrong type.
  static int onCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeCookieService*>(self);
    if (sd_bus_message_is_method_call(call, fake.kind_.interface, "Inhibit") > 0) return fake.inhibit(call, error);
    if (sd_bus_message_is_method_call(call, fake.kind_.interface, fake.kind_.release) > 0) return fake.release(call);
    return 0;
  }

  int inhibit(sd_bus_message* call, sd_bus_error* error) {
    if (sd_bus_message_has_signature(call, kind_.takesFlags ? "susu" : "ss") <= 0) return -EINVAL;
    const std::scoped_lock lock(mutex_);
    ++asked_;
    changed_.notify_all();
    switch (manner_) {
      case Manner::refuses:
        return sd_bus_error_set(error, "org.freedesktop.DBus.Error.AccessDenied", "no");
      case Manner::answersGarbage:
        return sd_bus_reply_method_return(call, "as", 2, "not", "a cookie");
      case Manner::staysSilent:
        return 1;
      case Manner::vanishes:
        sd_bus_close(peer_->bus());
        return 1;
      case Manner::grants:
        break;
    }
    held_.push_back(cookieFor(call));
    return sd_bus_reply_method_return(call, "u", held_.back().number);
  }

  Cookie cookieFor(sd_bus_message* call) {
    const char* application = "";
    const char* reason = "";
    Cookie cookie{++lastCookie_, sd_bus_message_get_sender(call), {}, {}, 0};
    if (kind_.takesFlags) {
      sd_bus_message_read(call, "susu", &application, nullptr, &reason, &cookie.flags);
    } else {
      sd_bus_message_read(call, "ss", &application, &reason);
    }
    cookie.application = application;
    cookie.reason = reason;
    return cookie;
  }

  int release(sd_bus_message* call) {
    std::uint32_t number = 0;
    if (sd_bus_message_read(call, "u", &number) <= 0) return -EINVAL;
    {
      const std::scoped_lock lock(mutex_);
      ++givenBack_;
    }
    forget([number](const Cookie& cookie) { return cookie.number == number; });
    return sd_bus_reply_method_return(call, "");
  }

  ServiceThread& thread_;
  const std::string address_;
  const Kind kind_;

  // On the services' thread.
  std::unique_ptr<BusPeer> peer_;
  BusSlot object_;
  BusSlot clients_;
  std::uint32_t lastCookie_ = 0;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Manner manner_;
  std::vector<Cookie> held_;
  int asked_ = 0;
  int givenBack_ = 0;
};

}  // namespace nimbo
