// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/services/private_bus.h"
#include "support/services/service_thread.h"

namespace nimbo {

/// The accessibility services of a session: the launcher on its bus, which says where the accessibility
/// bus is, and on that one the registry of applications.
class FakeAtspiDesktop {
 public:
  enum class Manner { answers, answersGarbage, staysSilent };

  explicit FakeAtspiDesktop(const std::string& sessionAddress) {
    thread_.run([&] {
      launcher_ = std::make_unique<BusPeer>(thread_.loop(), sessionAddress);
      launcherObject_ = object(*launcher_, onLauncherCall);
      launcher_->own("org.a11y.Bus");
      registry_ = std::make_unique<BusPeer>(thread_.loop(), bus_.address());
      registryObject_ = object(*registry_, onRegistryCall);
      registry_->own("org.a11y.atspi.Registry");
    });
  }
  ~FakeAtspiDesktop() {
    thread_.thaw();
    thread_.run([this] {
      registryObject_.reset();
      registry_.reset();
      launcherObject_.reset();
      launcher_.reset();
    });
  }
  FakeAtspiDesktop(const FakeAtspiDesktop&) = delete;
  FakeAtspiDesktop& operator=(const FakeAtspiDesktop&) = delete;

  [[nodiscard]] PrivateBus& bus() { return bus_; }
  [[nodiscard]] ServiceThread& thread() { return thread_; }

  void add(const std::string& application) {
    thread_.run([&] { applications_.push_back(application); });
  }
  void remove(const std::string& application) {
    thread_.run([&] { std::erase(applications_, application); });
  }

  std::atomic<Manner> launcherManner = Manner::answers;
  std::atomic<Manner> registryManner = Manner::answers;
  std::atomic<bool> enabled = false;  ///< org.a11y.Status.IsEnabled
  std::atomic<int> timesSet = 0;
  std::string otherAddress;  ///< told instead of the bus's own; to be set before anybody asks

 private:
  static constexpr const char* kRoot = "/org/a11y";

  BusSlot object(const BusPeer& peer, sd_bus_message_handler_t handler) {
    sd_bus_slot* slot = nullptr;
    sd_bus_add_fallback(peer.bus(), &slot, kRoot, handler, this);
    return BusSlot(slot);
  }

  static int onLauncherCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeAtspiDesktop*>(self);
    if (fake.launcherManner == Manner::staysSilent) return 1;
    if (fake.launcherManner == Manner::answersGarbage) return sd_bus_reply_method_return(call, "u", 7U);
    if (sd_bus_message_is_method_call(call, "org.a11y.Bus", "GetAddress") > 0) {
      const std::string& address = fake.otherAddress.empty() ? fake.bus_.address() : fake.otherAddress;
      return sd_bus_reply_method_return(call, "s", address.c_str());
    }
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0) {
      return sd_bus_reply_method_return(call, "v", "b", fake.enabled ? 1 : 0);
    }
    if (sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Set") > 0) {
      const char* interface = nullptr;
      const char* property = nullptr;
      int value = 0;
      if (sd_bus_message_read(call, "ssv", &interface, &property, "b", &value) <= 0) return -EINVAL;
      if (std::string(interface) + '.' + property != "org.a11y.Status.IsEnabled") return -EINVAL;
      fake.enabled = value != 0;
      ++fake.timesSet;
      return sd_bus_reply_method_return(call, "");
    }
    return sd_bus_error_set(error, SD_BUS_ERROR_UNKNOWN_METHOD, "no such method");
  }

  static int onRegistryCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeAtspiDesktop*>(self);
    if (fake.registryManner == Manner::staysSilent) return 1;
    if (fake.registryManner == Manner::answersGarbage) return sd_bus_reply_method_return(call, "s", "garbage");
    if (sd_bus_message_is_method_call(call, "org.a11y.atspi.Accessible", "GetChildren") <= 0) {
      return sd_bus_error_set(error, SD_BUS_ERROR_UNKNOWN_METHOD, "no such method");
    }
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_open_container(reply, 'a', "(so)");
    for (const auto& name : fake.applications_) {
      sd_bus_message_append(reply, "(so)", name.c_str(), "/org/a11y/atspi/accessible/root");
    }
    sd_bus_message_close_container(reply);
    return sd_bus_send(nullptr, BusMessage(reply).get(), nullptr);
  }

  PrivateBus bus_;
  ServiceThread thread_;

  // On the services' thread.
  std::unique_ptr<BusPeer> launcher_;
  std::unique_ptr<BusPeer> registry_;
  BusSlot launcherObject_;
  BusSlot registryObject_;
  std::vector<std::string> applications_;
};

/// What an element of a made-up application says of itself.
struct FakeAtspiNode {
  std::string name{};
  std::string description{};
  std::optional<std::string> text{};  ///< absent: it has no Text interface
  std::vector<FakeAtspiNode> children{};
  std::map<std::string, std::string> attributes{};
  std::uint32_t role = 0;
};

/// An application on the accessibility bus, on a thread of its own.
class FakeAtspiApplication {
 public:
  using Manner = FakeAtspiDesktop::Manner;

  FakeAtspiApplication(FakeAtspiDesktop& desktop, std::vector<FakeAtspiNode> windows) : desktop_(desktop) {
    thread_.run([&] {
      peer_ = std::make_unique<BusPeer>(thread_.loop(), desktop_.bus().address());
      sd_bus_slot* slot = nullptr;
      sd_bus_add_fallback(peer_->bus(), &slot, "/org/a11y/atspi", onCall, this);
      object_.reset(slot);
      peer_->own("com.example.Application");  // and so is known to the bus
      const char* name = nullptr;
      sd_bus_get_unique_name(peer_->bus(), &name);
      name_ = name;
      place({.children = std::move(windows)}, kRoot);
    });
    desktop_.add(name_);
  }
  ~FakeAtspiApplication() {
    thread_.thaw();
    desktop_.remove(name_);
    thread_.run([this] {
      object_.reset();
      peer_.reset();
    });
  }
  FakeAtspiApplication(const FakeAtspiApplication&) = delete;
  FakeAtspiApplication& operator=(const FakeAtspiApplication&) = delete;

  [[nodiscard]] ServiceThread& thread() { return thread_; }

  /// The first window is its own only child.
  void makeEndless() {
    thread_.run([this] { elements_[windowPath()].children = {windowPath()}; });
  }
  /// Its process ends without a word.
  void vanish() {
    thread_.run([this] { sd_bus_close(peer_->bus()); });
  }

  std::atomic<Manner> manner = Manner::answers;
  std::atomic<int> silentAfter = -1;    ///< from this call on; never if negative
  std::atomic<bool> asleep = false;     ///< windows are bare until somebody asks for the attributes of one
  std::atomic<int> emptyLooks = 0;      ///< so often a web page is still empty when it is looked at
  std::function<void()> onEmptyLook{};  ///< called at each of these looks; to be set before the first
  std::atomic<int> calls = 0;

 private:
  static constexpr const char* kRoot = "/org/a11y/atspi/accessible/root";
  static constexpr std::uint32_t kDocumentWeb = 95;

  struct Element {
    FakeAtspiNode node;  // without its children
    std::vector<std::string> children;
    int level = 0;
  };

  void place(FakeAtspiNode node, const std::string& path, int level = 0) {
    const auto children = std::exchange(node.children, {});
    std::vector<std::string> paths;
    for (const auto& child : children) {
      paths.push_back("/org/a11y/atspi/accessible/" + std::to_string(++lastNumber_));
      place(child, paths.back(), level + 1);
    }
    elements_[path] = {std::move(node), std::move(paths), level};
  }

  [[nodiscard]] std::string windowPath() { return elements_[kRoot].children.front(); }

  static int onCall(sd_bus_message* call, void* self, sd_bus_error* error) {
    auto& fake = *static_cast<FakeAtspiApplication*>(self);
    const int number = fake.calls++;
    if (fake.manner == Manner::staysSilent || (fake.silentAfter >= 0 && number >= fake.silentAfter)) return 1;
    if (fake.manner == Manner::answersGarbage) return sd_bus_reply_method_return(call, "ab", 2, 1, 0);
    const auto found = fake.elements_.find(sd_bus_message_get_path(call));
    const std::string method = sd_bus_message_get_member(call);
    if (found == fake.elements_.end()) return sd_bus_error_set(error, SD_BUS_ERROR_UNKNOWN_OBJECT, "it is gone");
    const Element& element = found->second;
    if (method == "Get") return property(call, element, error);
    if (method == "GetChildren") return fake.children(call, element);
    if (method == "GetRole") return sd_bus_reply_method_return(call, "u", element.node.role);
    if (method == "GetAttributes") return fake.attributes(call, element);
    if (method == "GetText" && element.node.text) {
      return sd_bus_reply_method_return(call, "s", element.node.text->c_str());
    }
    return sd_bus_error_set(error, SD_BUS_ERROR_UNKNOWN_METHOD, "no such method");
  }

  static int property(sd_bus_message* call, const Element& element, sd_bus_error* error) {
    const char* name = nullptr;
    sd_bus_message_read(call, "ss", nullptr, &name);
    if (std::string(name) == "Name") return sd_bus_reply_method_return(call, "v", "s", element.node.name.c_str());
    if (std::string(name) == "Description") {
      return sd_bus_reply_method_return(call, "v", "s", element.node.description.c_str());
    }
    return sd_bus_error_set(error, SD_BUS_ERROR_UNKNOWN_PROPERTY, "no such property");
  }

  int children(sd_bus_message* call, const Element& element) {
    if (asleep && element.level == 1) {
      return sd_bus_reply_method_return(call, "a(so)", 1, name_.c_str(), "/org/a11y/atspi/null");
    }
    const bool empty = element.node.role == kDocumentWeb && emptyLooks > 0 && emptyLooks-- > 0;
    if (empty && onEmptyLook) onEmptyLook();
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_open_container(reply, 'a', "(so)");
    for (const auto& path : empty ? std::vector<std::string>() : element.children) {
      sd_bus_message_append(reply, "(so)", name_.c_str(), path.c_str());
    }
    sd_bus_message_close_container(reply);
    return sd_bus_send(nullptr, BusMessage(reply).get(), nullptr);
  }

  int attributes(sd_bus_message* call, const Element& element) {
    if (element.level == 1) asleep = false;
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_open_container(reply, 'a', "{ss}");
    for (const auto& [name, value] : element.node.attributes) {
      sd_bus_message_append(reply, "{ss}", name.c_str(), value.c_str());
    }
    sd_bus_message_close_container(reply);
    return sd_bus_send(nullptr, BusMessage(reply).get(), nullptr);
  }

  FakeAtspiDesktop& desktop_;
  ServiceThread thread_;

  // On the application's thread.
  std::unique_ptr<BusPeer> peer_;
  BusSlot object_;
  std::string name_;
  std::map<std::string, Element> elements_;
  int lastNumber_ = 0;
};

}  // namespace nimbo
