// SPDX-License-Identifier: MIT
#pragma once

#include <wayland-client-core.h>

#include <QMargins>
#include <QPoint>
#include <QSize>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

struct wl_compositor;
struct wl_output;
struct wl_registry;
struct wl_subcompositor;
struct wl_subsurface;
struct wl_surface;
struct xdg_wm_base;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace nimbo {

/// Whether the compositor named by WAYLAND_DISPLAY lets windows hang at the edges of a screen
/// (wlr-layer-shell). Asks on a connection of its own.
[[nodiscard]] bool layerShellOffered();

enum class Layer { panels = 2, overPanels = 3 };

/// The role of a surface that hangs above all windows. To be destroyed before the surface. What is set holds from the
/// surface's next commit on. Main thread only.
class LayerSurface {
 public:
  LayerSurface(wl_display& display, zwlr_layer_shell_v1& shell, wl_surface& surface, wl_output* output, Layer layer,
               std::function<void()> closed);
  ~LayerSurface();
  LayerSurface(const LayerSurface&) = delete;
  LayerSurface& operator=(const LayerSurface&) = delete;

  /// Fills what panels leave of the screen, or the whole screen.
  void fill(bool panelsToo);
  /// Along the edge it is anchored to that edge's left or upper end.
  void anchor(Qt::Edge edge, const QMargins& margins, QSize size);
  /// Keys go here and nowhere else.
  void takeKeyboard();
  /// Makes it the newest of its layer.
  void restack();

  /// Commits without content and waits for what the compositor makes of it: the size that it gives. Nothing may be
  /// drawn on the surface before.
  [[nodiscard]] QSize settle();

 private:
  wl_display& display_;
  wl_surface& surface_;
  wl_event_queue* const queue_;
  const Layer layer_;
  const std::function<void()> closed_;
  zwlr_layer_surface_v1* object_ = nullptr;
  QSize given_;
};

/// A surface that belongs to another one and is above it. To be destroyed before it.
class InnerSurface {
 public:
  InnerSurface(wl_subcompositor& compositor, wl_surface& surface, wl_surface& parent);
  ~InnerSurface();
  InnerSurface(const InnerSurface&) = delete;
  InnerSurface& operator=(const InnerSurface&) = delete;

  /// In the parent.
  void move(QPoint place);

 private:
  wl_surface& parent_;
  wl_subsurface* const object_;
};

/// What a compositor offers for them, on the toolkit's connection.
class LayerShell {
 public:
  explicit LayerShell(wl_display& display);
  ~LayerShell();
  LayerShell(const LayerShell&) = delete;
  LayerShell& operator=(const LayerShell&) = delete;

  /// The rest only if it is.
  [[nodiscard]] bool offered() const { return object_ && compositor_ && subcompositor_ && windows_; }
  /// Whether of two surfaces on a layer the one that came first is above.
  [[nodiscard]] bool newestIsLowest() const { return newestIsLowest_; }
  /// `closed`: the compositor takes it from the screen.
  [[nodiscard]] std::unique_ptr<LayerSurface> makeSurface(wl_surface& surface, wl_output* output, Layer layer,
                                                          std::function<void()> closed) const;
  [[nodiscard]] std::unique_ptr<InnerSurface> makeInner(wl_surface& surface, wl_surface& parent) const;
  /// What an ordinary window would get of the screen in use, if it were as large as possible. Absent when the
  /// compositor does not tell. Nothing is shown.
  [[nodiscard]] std::optional<QSize> roomForWindows() const;

 private:
  void offer(wl_registry& registry, std::uint32_t name, std::string_view interface, std::uint32_t version);

  wl_display& display_;
  wl_event_queue* const queue_;
  zwlr_layer_shell_v1* object_ = nullptr;
  wl_compositor* compositor_ = nullptr;
  wl_subcompositor* subcompositor_ = nullptr;
  xdg_wm_base* windows_ = nullptr;
  bool newestIsLowest_ = false;
};

}  // namespace nimbo
