// SPDX-License-Identifier: MIT
#include "ui/qt/linux/layer/layer_shell.h"

#include <wayland-client-protocol.h>
#include <wlr-layer-shell-unstable-v1-client.h>
#include <xdg-shell-client.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace nimbo {
namespace {

constexpr std::uint32_t kNewestVersion = 4;
constexpr int kTurnsForAnswer = 5;
static_assert(static_cast<int>(Layer::panels) == ZWLR_LAYER_SHELL_V1_LAYER_TOP &&
              static_cast<int>(Layer::overPanels) == ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);

constexpr std::uint32_t kTop = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP;
constexpr std::uint32_t kBottom = ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM;
constexpr std::uint32_t kLeft = ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT;
constexpr std::uint32_t kRight = ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

// As the protocol has it: moved clear of panels, or not moved at all.
constexpr std::int32_t kClearOfPanels = 0;
constexpr std::int32_t kOverPanels = -1;

std::uint32_t anchorsOf(Qt::Edge edge) {
  if (edge == Qt::BottomEdge) return kBottom | kLeft;
  return kTop | (edge == Qt::RightEdge ? kRight : kLeft);
}

/// The same object, but what it makes has its events in the other queue.
template <class Object>
Object* inQueue(Object* object, wl_event_queue* queue) {
  auto* const wrapper = static_cast<Object*>(wl_proxy_create_wrapper(object));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
  return wrapper;
}

}  // namespace

LayerShell::LayerShell(wl_display& display) : display_(display), queue_(wl_display_create_queue(&display)) {
  static constexpr wl_registry_listener kListener{
      .global =
          [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
            static_cast<LayerShell*>(data)->offer(*registry, name, interface, version);
          },
      .global_remove = [](void*, wl_registry*, std::uint32_t) {}};
  wl_display* const wrapper = inQueue(&display, queue_);
  wl_registry* const registry = wl_display_get_registry(wrapper);
  wl_proxy_wrapper_destroy(wrapper);
  wl_registry_add_listener(registry, &kListener, this);
  wl_display_roundtrip_queue(&display, queue_);
  wl_registry_destroy(registry);
}

void LayerShell::offer(wl_registry& registry, std::uint32_t name, std::string_view interface, std::uint32_t version) {
  const auto bind = [&](const wl_interface& wanted, std::uint32_t newest) {
    return wl_registry_bind(&registry, name, &wanted, std::min(version, newest));
  };
  if (interface == zwlr_layer_shell_v1_interface.name && object_ == nullptr) {
    object_ = static_cast<zwlr_layer_shell_v1*>(bind(zwlr_layer_shell_v1_interface, kNewestVersion));
  }
  if (interface == wl_compositor_interface.name && compositor_ == nullptr) {
    compositor_ = static_cast<wl_compositor*>(bind(wl_compositor_interface, 1));
  }
  if (interface == xdg_wm_base_interface.name && windows_ == nullptr) {
    windows_ = static_cast<xdg_wm_base*>(bind(xdg_wm_base_interface, 1));
  }
  if (interface == wl_subcompositor_interface.name && subcompositor_ == nullptr) {
    subcompositor_ = static_cast<wl_subcompositor*>(bind(wl_subcompositor_interface, 1));
  }
  // Sway before 1.10, when that protocol was dropped and surfaces were turned round.
  if (interface == "zwlr_input_inhibit_manager_v1") newestIsLowest_ = std::getenv("SWAYSOCK") != nullptr;
}

LayerShell::~LayerShell() {
  if (compositor_ != nullptr) wl_compositor_destroy(compositor_);
  if (subcompositor_ != nullptr) wl_subcompositor_destroy(subcompositor_);
  if (windows_ != nullptr) xdg_wm_base_destroy(windows_);
  if (object_ != nullptr && zwlr_layer_shell_v1_get_version(object_) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
    zwlr_layer_shell_v1_destroy(object_);
  } else if (object_ != nullptr) {
    wl_proxy_destroy(reinterpret_cast<wl_proxy*>(object_));
  }
  wl_event_queue_destroy(queue_);
}

std::unique_ptr<LayerSurface> LayerShell::makeSurface(wl_surface& surface, wl_output* output, Layer layer,
                                                      std::function<void()> closed) const {
  return std::make_unique<LayerSurface>(display_, *object_, surface, output, layer, std::move(closed));
}

std::unique_ptr<InnerSurface> LayerShell::makeInner(wl_surface& surface, wl_surface& parent) const {
  return std::make_unique<InnerSurface>(*subcompositor_, surface, parent);
}

std::optional<QSize> LayerShell::roomForWindows() const {
  static constexpr xdg_surface_listener kSurfaceListener{.configure = [](void*, xdg_surface*, std::uint32_t) {}};
  static constexpr xdg_toplevel_listener kListener{
      .configure = [](void* data, xdg_toplevel*, std::int32_t width, std::int32_t height,
                      wl_array*) { *static_cast<std::optional<QSize>*>(data) = QSize(width, height); },
      .close = [](void*, xdg_toplevel*) {},
      .configure_bounds = nullptr,
      .wm_capabilities = nullptr};
  std::optional<QSize> room;
  wl_surface* const surface = wl_compositor_create_surface(compositor_);
  xdg_surface* const window = xdg_wm_base_get_xdg_surface(windows_, surface);
  xdg_surface_add_listener(window, &kSurfaceListener, nullptr);
  xdg_toplevel* const toplevel = xdg_surface_get_toplevel(window);
  xdg_toplevel_add_listener(toplevel, &kListener, &room);
  xdg_toplevel_set_maximized(toplevel);
  wl_surface_commit(surface);
  // The compositor may answer a turn of its loop later.
  for (int turn = 0; turn < kTurnsForAnswer && !room; ++turn) wl_display_roundtrip_queue(&display_, queue_);
  xdg_toplevel_destroy(toplevel);
  xdg_surface_destroy(window);
  wl_surface_destroy(surface);
  return room;
}

InnerSurface::InnerSurface(wl_subcompositor& compositor, wl_surface& surface, wl_surface& parent)
    : parent_(parent), object_(wl_subcompositor_get_subsurface(&compositor, &surface, &parent)) {
  wl_subsurface_set_desync(object_);
}

InnerSurface::~InnerSurface() { wl_subsurface_destroy(object_); }

// It holds from the parent's next commit on.
void InnerSurface::move(QPoint place) {
  wl_subsurface_set_position(object_, place.x(), place.y());
  wl_surface_commit(&parent_);
}

LayerSurface::LayerSurface(wl_display& display, zwlr_layer_shell_v1& shell, wl_surface& surface, wl_output* output,
                           Layer layer, std::function<void()> closed)
    : display_(display),
      surface_(surface),
      queue_(wl_display_create_queue(&display)),
      layer_(layer),
      closed_(std::move(closed)) {
  static constexpr zwlr_layer_surface_v1_listener kListener{
      .configure =
          [](void* data, zwlr_layer_surface_v1* object, std::uint32_t serial, std::uint32_t width,
             std::uint32_t height) {
            static_cast<LayerSurface*>(data)->given_ = {static_cast<int>(width), static_cast<int>(height)};
            zwlr_layer_surface_v1_ack_configure(object, serial);
          },
      .closed = [](void* data, zwlr_layer_surface_v1*) { static_cast<LayerSurface*>(data)->closed_(); }};
  zwlr_layer_shell_v1* const wrapper = inQueue(&shell, queue_);
  object_ =
      zwlr_layer_shell_v1_get_layer_surface(wrapper, &surface, output, static_cast<std::uint32_t>(layer), "nimbo");
  wl_proxy_wrapper_destroy(wrapper);
  zwlr_layer_surface_v1_add_listener(object_, &kListener, this);
}

LayerSurface::~LayerSurface() {
  zwlr_layer_surface_v1_destroy(object_);
  wl_event_queue_destroy(queue_);
}

void LayerSurface::fill(bool panelsToo) {
  zwlr_layer_surface_v1_set_anchor(object_, kTop | kBottom | kLeft | kRight);
  zwlr_layer_surface_v1_set_exclusive_zone(object_, panelsToo ? kOverPanels : kClearOfPanels);
}

void LayerSurface::anchor(Qt::Edge edge, const QMargins& margins, QSize size) {
  zwlr_layer_surface_v1_set_anchor(object_, anchorsOf(edge));
  zwlr_layer_surface_v1_set_margin(object_, margins.top(), margins.right(), margins.bottom(), margins.left());
  zwlr_layer_surface_v1_set_size(object_, static_cast<std::uint32_t>(size.width()),
                                 static_cast<std::uint32_t>(size.height()));
}

void LayerSurface::takeKeyboard() {
  zwlr_layer_surface_v1_set_keyboard_interactivity(object_, ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
}

void LayerSurface::restack() {
  for (const auto layer : {Layer::panels, layer_}) {
    zwlr_layer_surface_v1_set_layer(object_, static_cast<std::uint32_t>(layer));
    wl_surface_commit(&surface_);
  }
}

QSize LayerSurface::settle() {
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(object_), queue_);
  wl_surface_commit(&surface_);
  wl_display_roundtrip_queue(&display_, queue_);
  // What comes later is handled in the toolkit's loop.
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(object_), nullptr);
  return given_;
}

bool layerShellOffered() {
  wl_display* const display = wl_display_connect(nullptr);
  if (display == nullptr) return false;
  const bool offered = LayerShell(*display).offered();
  wl_display_disconnect(display);
  return offered;
}

}  // namespace nimbo
