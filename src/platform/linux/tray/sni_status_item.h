// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/subscription.h"
#include "platform/linux/bus/bus_writer.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/loop/sd_event_main_loop.h"
#include "platform/linux/tray/dbus_menu.h"
#include "platform/linux/tray/tray_host.h"
#include "platform/posix/loop/retry.h"
#include "platform/status_bar.h"

namespace nimbo {

class PanelAppearance;
class TrayWatch;

/// One tray icon: an org.kde.StatusNotifierItem on a bus connection of its own, because hosts keep
/// a dead icon when one of several objects on a connection goes. It has no name on the bus: GNOME's tray
/// loses items that have one and answer fast. It registers with every tray that appears, and connects again when the
/// connection ends or cannot be made. Main thread only.
class SniStatusItem final : public StatusItem {
 public:
  struct Setup {
    StatusItemName name;
    TrayHost host;
  };

  /// `loop`, `panel` and `tray` outlive the item.
  SniStatusItem(SdEventMainLoop& loop, std::string busAddress, Setup setup, StatusItemContent content,
                StatusItemHandlers handlers, PanelAppearance& panel, TrayWatch& tray);

  void setContent(const StatusItemContent& content) override;
  /// Trays have no such mark, so the picture gets a ground.
  void setHighlighted(bool highlighted) override;

 private:
  static std::vector<sd_bus_vtable> makeTable(bool labelled);
  static const sd_bus_vtable* table(bool labelled);
  void connect();
  void connectLater();
  [[nodiscard]] sd_bus* bus() const { return wire_->connection.get(); }
  void registerWith(const std::string& tray);
  void emit(const char* signal);

  template <bool kAlternate>
  int click(sd_bus_message* call, sd_bus_error* error);
  int ignore(sd_bus_message* call, sd_bus_error* error);
  [[nodiscard]] std::string identifier() const;
  [[nodiscard]] std::string title() const;
  [[nodiscard]] std::string accessibleName() const;
  [[nodiscard]] std::string label() const;
  void iconPixmap(BusWriter& reply) const;
  void toolTip(BusWriter& reply) const;

  /// What there is anew with each connection.
  struct Wire {
    explicit Wire(SniStatusItem& item);

    SdBusConnection connection;
    DbusMenu menu;
    BusSlot object;
    BusSlot registration;
  };

  SdEventMainLoop& loop_;
  const std::string busAddress_;
  const Setup setup_;
  StatusItemContent content_;
  const StatusItemHandlers handlers_;
  const PanelAppearance& panel_;
  const bool labelled_;  // an empty label hides the icon on one host, so it is only there when used
  bool highlighted_ = false;

  TrayWatch& tray_;
  std::optional<Wire> wire_;
  bool announced_ = false;  // some tray knows of the item
  Subscription panelObserver_;
  Subscription turns_;
  Retry retry_{loop_};
};

}  // namespace nimbo
