// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QSignalMapper>
#include <QTimer>
#include <map>
#include <memory>
#include <vector>

#include "ui/qt/linux/layer/layer_shell.h"
#include "ui/qt/windows/window_system.h"

class QScreen;
class QWindow;

namespace nimbo {

/// Wayland where windows can hang at the edges of a screen. Ordinary windows are the toolkit's; the dashboard is a
/// layer surface, which the compositor keeps clear of panels, and what its controls open belongs to that. Behind it
/// transparent ones cover every screen, panels included: they make a click anywhere else one on this program, and tell
/// where the pointer is.
class LayerWindowSystem final : public QObject, public WindowSystem {
 public:
  explicit LayerWindowSystem(wl_display& display);
  ~LayerWindowSystem() override;

  /// Null when the running platform is none of that kind.
  [[nodiscard]] static std::unique_ptr<WindowSystem> make();

  [[nodiscard]] bool compositing() const override { return true; }
  [[nodiscard]] bool menusDrawShadows() const override { return true; }
  void announceMargins(QWidget& /*window*/, const QMargins& margins) override { shadow_ = margins; }
  [[nodiscard]] bool popupsHearAllClicks() const override { return true; }
  [[nodiscard]] bool inputIsFree() override { return true; }
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> activated) override;
  void activate(QWidget& window) override;
  void hang(QWidget& window, const QRect& frame, const Hanging& hanging) override;

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  [[nodiscard]] bool isHanging(const QWindow& window) const;
  [[nodiscard]] bool isCover(const QWindow& window) const;
  [[nodiscard]] bool isLayer(const QWindow& window) const;
  void watchSurface(QWindow& window);
  /// The toolkit is about to draw on it for the first time. False when that has to wait.
  [[nodiscard]] bool open(QWindow& window);
  void surfaceEnds(const QWindow& window);

  void coverScreens();
  void waitForPointer();
  void endWait();
  void pointerEntered(QPointF place);

  LayerSurface& makeSurface(QWindow& window, QScreen& screen, Layer layer);
  /// Finds out what is free.
  void measure(LayerSurface& surface);
  void placeHanging(LayerSurface& surface);
  [[nodiscard]] Qt::Edge panelsEdge() const;

  const LayerShell shell_;
  QPointer<QWidget> hanging_;
  Hanging how_;
  QMargins shadow_;   ///< around the frame of the window that hangs
  QSize free_;        ///< what panels leave of its screen
  QSize unreserved_;  ///< of the rest, what is not kept clear of this window: of panels of Plasma before version 6
  QTimer patience_;   ///< runs while it is not shown yet, because the place of the pointer may tell its own
  QTimer deactivation_;
  QSignalMapper surfaceEnds_;
  std::vector<std::unique_ptr<QWidget>> covers_;
  std::map<const QWindow*, std::unique_ptr<LayerSurface>> surfaces_;
  std::map<const QWindow*, std::unique_ptr<InnerSurface>> inner_;
};

}  // namespace nimbo
