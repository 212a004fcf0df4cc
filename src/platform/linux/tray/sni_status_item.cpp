// SPDX-License-Identifier: MIT
#include "platform/linux/tray/sni_status_item.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "base/text.h"
#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/tray/panel_appearance.h"
#include "platform/linux/tray/template_image_raster.h"
#include "platform/linux/tray/tray_watch.h"

namespace nimbo {
namespace {

constexpr const char* kPath = "/StatusNotifierItem";
constexpr const char* kInterface = "org.kde.StatusNotifierItem";
constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";

/// Pixels; the sizes of panels at scale 1 and 2. Hosts scale between them.
constexpr int kIconSides[] = {16, 22, 24, 32, 44, 48, 64};
/// Under the picture of the item that the dashboard hangs from.
constexpr TemplateShape kGround{{{0, 0, TemplateImage::kSide, TemplateImage::kSide}, 4}, 0.2, {}, {}};
constexpr TintColor kBright{0xf2, 0xf2, 0xf2};
constexpr TintColor kDark{0x26, 0x26, 0x26};

Ink inkOn(std::optional<Appearance> panel) {
  if (!panel) return {kBright, kDark};
  return {*panel == Appearance::dark ? kBright : kDark};
}

/// Hosts give a point only: the pointer, or a corner of the icon.
std::optional<Rect> anchorAt(int x, int y) {
  constexpr double kAnchorSide = 24;
  constexpr int kFarthest = 32767;  // X11 coordinates are 16 bits wide
  const bool nowhere = (x <= 0 && y <= 0) || x < -kFarthest || x > kFarthest || y < -kFarthest || y > kFarthest;
  if (nowhere) return std::nullopt;
  return Rect{x - kAnchorSide / 2, y - kAnchorSide / 2, kAnchorSide, kAnchorSide};
}

// A label that became empty would hide the icon on one host.
std::string labelText(const StatusItemContent& content) {
  const std::string text = repairedUtf8(content.title.value_or(""));
  return text.empty() ? " " : text;
}

/// For hosts that open the menu on a plain click: the dashboard comes first in it.
StatusItemHandlers withDashboardEntry(StatusItemHandlers handlers) {
  for (auto* const menu : {&handlers.menuWillOpen, &handlers.menuPreview}) {
    *menu = [build = *menu, clicked = handlers.clicked] {
      StatusMenu built = build();
      built.entries.insert(built.entries.begin(),
                           MenuEntry{MenuEntry::Kind::action, "Open Nimbo", true, "", [clicked] { clicked({}); }});
      return built;
    };
  }
  return handlers;
}

}  // namespace

std::vector<sd_bus_vtable> SniStatusItem::makeTable(bool labelled) {
  using Self = SniStatusItem;
  constexpr auto kConstant = SD_BUS_VTABLE_PROPERTY_CONST;
  constexpr auto kChanges = SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
  // Everybody on the bus belongs to the user; asking the bus about each caller's rights would block.
  constexpr auto kUnprivileged = SD_BUS_VTABLE_UNPRIVILEGED;
  std::vector<sd_bus_vtable> table{
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Activate", "ii", "", bus_table::method<&Self::click<false>>, kUnprivileged),
      SD_BUS_METHOD("SecondaryActivate", "ii", "", bus_table::method<&Self::click<true>>, kUnprivileged),
      // Asked only by hosts that cannot show a menu, such as swaybar; all that the menu does is in the dashboard, too.
      SD_BUS_METHOD("ContextMenu", "ii", "", bus_table::method<&Self::click<false>>, kUnprivileged),
      SD_BUS_METHOD("Scroll", "is", "", bus_table::method<&Self::ignore>, kUnprivileged),
      // No ProvideXdgActivationToken: a desktop that has given a token waits for its use under a busy pointer.
      SD_BUS_PROPERTY("Category", "s", bus_table::property<[] { return "SystemServices"; }>, 0, kConstant),
      SD_BUS_PROPERTY("Id", "s", bus_table::property<&Self::identifier>, 0, kConstant),
      SD_BUS_PROPERTY("Title", "s", bus_table::property<&Self::title>, 0, kChanges),
      SD_BUS_PROPERTY("Status", "s", bus_table::property<[] { return "Active"; }>, 0, kChanges),
      SD_BUS_PROPERTY("WindowId", "i", bus_table::property<[] { return 0; }>, 0, kConstant),
      SD_BUS_PROPERTY("IconName", "s", bus_table::property<[] { return ""; }>, 0, kConstant),
      // 35 KB that every host reads again after NewIcon would be sent for nothing with a change.
      SD_BUS_PROPERTY("IconPixmap", "a(iiay)", bus_table::property<&Self::iconPixmap>, 0, 0),
      SD_BUS_PROPERTY("IconAccessibleDesc", "s", bus_table::property<&Self::accessibleName>, 0, kChanges),
      SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", bus_table::property<&Self::toolTip>, 0, kChanges),
      SD_BUS_PROPERTY("ItemIsMenu", "b", bus_table::property<[] { return false; }>, 0, kConstant),
      SD_BUS_PROPERTY("Menu", "o", (bus_table::property<[] { return BusObjectPath{DbusMenu::kPath}; }>), 0, kConstant),
      SD_BUS_SIGNAL("NewTitle", "", 0),
      SD_BUS_SIGNAL("NewIcon", "", 0),
      SD_BUS_SIGNAL("NewToolTip", "", 0),
      SD_BUS_SIGNAL("NewStatus", "s", 0),
  };
  if (labelled) {
    table.insert(table.end(),
                 {SD_BUS_PROPERTY("XAyatanaLabel", "s", bus_table::property<&Self::label>, 0, kChanges),
                  SD_BUS_PROPERTY("XAyatanaLabelGuide", "s", bus_table::property<&Self::label>, 0, kChanges),
                  SD_BUS_SIGNAL("XAyatanaNewLabel", "ss", 0)});
  }
  table.push_back(SD_BUS_VTABLE_END);
  return table;
}

// Kept until the process ends: sd-bus reads the table once more after a handler that destroyed its item.
const sd_bus_vtable* SniStatusItem::table(bool labelled) {
  static const auto kPlain = makeTable(false);
  static const auto kLabelled = makeTable(true);
  return labelled ? kLabelled.data() : kPlain.data();
}

SniStatusItem::Wire::Wire(SniStatusItem& item)
    : connection(item.loop_.event(), item.busAddress_, [&item] { item.connectLater(); }),
      menu(connection.get(), item.handlers_),
      object(addObject(connection.get(), kPath, kInterface, table(item.labelled_), &item)) {}

SniStatusItem::SniStatusItem(SdEventMainLoop& loop, std::string busAddress, Setup setup, StatusItemContent content,
                             StatusItemHandlers handlers, PanelAppearance& panel, TrayWatch& tray)
    : loop_(loop),
      busAddress_(std::move(busAddress)),
      setup_(std::move(setup)),
      content_(std::move(content)),
      handlers_(setup_.host.clickOpensMenu ? withDashboardEntry(std::move(handlers)) : std::move(handlers)),
      panel_(panel),
      labelled_(setup_.host.showsLabels && content_.title),
      tray_(tray) {
  connect();
  panelObserver_ = panel.observe([this] { emit("NewIcon"); });
}

void SniStatusItem::connect() {
  wire_.emplace(*this);
  if (bus() == nullptr) return connectLater();
  turns_ = tray_.attend([this](const std::string& owner) { registerWith(owner); });
}

// Not at once: what took the connection may still be there.
void SniStatusItem::connectLater() {
  turns_.reset();
  announced_ = false;
  retry_.later([this] { connect(); });
}

void SniStatusItem::registerWith(const std::string& tray) {
  wire_->registration.reset();
  announced_ = !tray.empty();
  if (!announced_) return;
  const BusMethod method{tray.c_str(), "/StatusNotifierWatcher", kWatcher, "RegisterStatusNotifierItem"};
  // A path stands for this connection. A tray that refuses is gone or broken; the next one is registered with.
  wire_->registration = callAsync(methodCall(bus(), method, kPath), [this](sd_bus_message*) { retry_.succeeded(); });
  if (!wire_->registration) connectLater();  // it could not be sent
}

void SniStatusItem::emit(const char* signal) {
  if (announced_) sd_bus_emit_signal(bus(), kPath, kInterface, signal, "");
}

void SniStatusItem::setContent(const StatusItemContent& content) {
  const bool newImage = !(content.image == content_.image);
  const bool newName = setup_.host.readsTitles && content.accessibleName != content_.accessibleName;
  const bool newToolTip = content.toolTip != content_.toolTip;
  const bool newLabel = labelled_ && content.title != content_.title;
  content_ = content;
  // A tray reads everything when the item registers with it, so there is nobody to tell before.
  if (!announced_) return;
  std::array<const char*, 6> changed{};  // with a null at the end
  auto next = changed.begin();
  if (newImage) emit("NewIcon");
  if (newName) {
    emit("NewTitle");
    *next++ = "Title";
    *next++ = "IconAccessibleDesc";
  }
  if (newToolTip) {
    emit("NewToolTip");
    *next++ = "ToolTip";
  }
  if (newLabel) {
    const std::string text = labelText(content);
    sd_bus_emit_signal(bus(), kPath, kInterface, "XAyatanaNewLabel", "ss", text.c_str(), text.c_str());
    *next++ = "XAyatanaLabel";
    *next++ = "XAyatanaLabelGuide";
  }
  if (next == changed.begin()) return;
  sd_bus_emit_properties_changed_strv(bus(), kPath, kInterface, const_cast<char**>(changed.data()));
}

void SniStatusItem::setHighlighted(bool highlighted) {
  if (std::exchange(highlighted_, highlighted) != highlighted) emit("NewIcon");
}

template <bool kAlternate>
int SniStatusItem::click(sd_bus_message* call, sd_bus_error* /*error*/) {
  int x = 0;
  int y = 0;
  if (const int result = sd_bus_message_read(call, "ii", &x, &y); result < 0) return result;
  // The answer first, because opening the dashboard may take a while; a copy of the handler,
  // because it may destroy the item.
  const int result = sd_bus_reply_method_return(call, "");
  const auto handler = handlers_.clicked;
  handler(StatusClick{kAlternate, anchorAt(x, y)});
  return result;
}

// There is nothing to scroll.
int SniStatusItem::ignore(sd_bus_message* call, sd_bus_error* /*error*/) {
  return sd_bus_reply_method_return(call, "");
}

std::string SniStatusItem::identifier() const {
  std::string identifier = setup_.name.identifier;
  if (const auto place = setup_.name.place; place && setup_.host.sorting == TraySorting::byIdentifier) {
    identifier.insert(identifier.find('-') + 1, std::to_string(*place + 1) + "-");
  }
  if (setup_.host.sorting == TraySorting::asBefore) identifier += setup_.name.arrangement;
  return identifier;
}

// Blanks come before letters and are neither seen nor heard; the more, the earlier.
std::string SniStatusItem::title() const {
  constexpr int kPlaces = 3;
  const auto place = setup_.name.place;
  const int blanks = place && setup_.host.sorting == TraySorting::byTitle ? std::max(kPlaces - *place, 0) : 0;
  return std::string(static_cast<std::size_t>(blanks), ' ') + accessibleName();
}

std::string SniStatusItem::accessibleName() const {
  if (!setup_.host.readsTitles) return "";
  return content_.accessibleName.empty() ? "Nimbo" : repairedUtf8(content_.accessibleName);
}

std::string SniStatusItem::label() const { return labelText(content_); }

void SniStatusItem::iconPixmap(BusWriter& reply) const {
  const Ink ink = inkOn(panel_.appearance());
  TemplateImage image = content_.image;
  if (highlighted_) image.shapes.insert(image.shapes.begin(), kGround);
  reply.inside(SD_BUS_TYPE_ARRAY, "(iiay)", [&] {
    for (const int side : kIconSides) {
      reply.inside(SD_BUS_TYPE_STRUCT, "iiay", [&] {
        reply.add(side);
        reply.add(side);
        reply.add(argbPixels(image, side, ink));
      });
    }
  });
}

void SniStatusItem::toolTip(BusWriter& reply) const {
  const ToolTipText text = toolTipText(content_.toolTip, setup_.host.toolTipTitle);
  reply.inside(SD_BUS_TYPE_STRUCT, "sa(iiay)ss", [&] {
    reply.add("");  // the icon's name
    reply.inside(SD_BUS_TYPE_ARRAY, "(iiay)", [] {});
    reply.add(text.title);
    reply.add(text.subtitle);
  });
}

}  // namespace nimbo
