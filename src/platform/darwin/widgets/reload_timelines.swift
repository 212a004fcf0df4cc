// SPDX-License-Identifier: MIT
import WidgetKit

/// For group_widget_center.mm, which loads this when there is something to reload.
@_cdecl("nimboReloadTimelines")
public func nimboReloadTimelines(_ kind: UnsafePointer<CChar>) {
  WidgetCenter.shared.reloadTimelines(ofKind: String(cString: kind))
}
