// SPDX-License-Identifier: MIT
import SwiftUI
import WidgetKit

@main
struct NimboWidgetBundle: WidgetBundle {
  var body: some Widget {
    UsageWidget()
    TemperatureWidget()
  }
}

/// How old a reading is, which goes on by itself.
struct AgeView: View {
  let read: Date
  let isStale: Bool

  var body: some View {
    VStack(alignment: .leading) {
      Text("Updated \(read, style: .relative) ago")
      if isStale { Text("Stale").foregroundStyle(.orange) }
    }
    .font(.caption2)
    .foregroundStyle(.secondary)
  }
}

struct NoteView: View {
  let text: String

  var body: some View {
    Text(verbatim: text).font(.caption).foregroundStyle(.secondary)
  }
}

extension View {
  /// All of a widget, which opens `link`. macOS 14 wants to know the background, and has margins of its own.
  @ViewBuilder func asWidget(opening link: String) -> some View {
    let filled = frame(maxWidth: .infinity, maxHeight: .infinity, alignment: .topLeading)
      .widgetURL(URL(string: link))
    if #available(macOS 14.0, *) {
      filled.containerBackground(.background, for: .widget)
    } else {
      filled.padding()
    }
  }
}
