// SPDX-License-Identifier: MIT
import SwiftUI
import WidgetKit

struct UsageWidget: Widget {
  var body: some WidgetConfiguration {
    StaticConfiguration(
      kind: "com.quellwerk.Nimbo.usage",
      provider: SnapshotProvider { snapshot in changes(of: snapshot.codex) + changes(of: snapshot.claude) }
    ) { entry in
      UsageView(entry: entry).asWidget(opening: "nimbo://usage")
    }
    .configurationDisplayName("AI Allowances")
    .description("What is left of Codex and Claude.")
    .supportedFamilies([.systemMedium])
  }
}

/// A reading grows old, and a limit that is reset is no longer what was read.
private func changes(of provider: WidgetSnapshot.Provider) -> [Date] {
  guard let reading = provider.snapshot else { return [] }
  return [reading.fetchedAt.becomesStale] + reading.windows.compactMap(\.resetsAt)
}

struct UsageView: View {
  let entry: SnapshotEntry

  var body: some View {
    if let snapshot = entry.snapshot {
      if snapshot.codex.enabled || snapshot.claude.enabled {
        ViewThatFits(in: .vertical) {
          columns(of: snapshot, showsResets: true)
          columns(of: snapshot, showsResets: false)
        }
      } else {
        NoteView(text: "Switch on AI usage in Nimbo’s settings.")
      }
    } else {
      NoteView(text: "No data")
    }
  }

  private func columns(of snapshot: WidgetSnapshot, showsResets: Bool) -> some View {
    HStack(alignment: .top, spacing: 16) {
      if snapshot.codex.enabled {
        ProviderView(name: "Codex", provider: snapshot.codex, now: entry.date, showsResets: showsResets)
      }
      if snapshot.claude.enabled {
        ProviderView(name: "Claude", provider: snapshot.claude, now: entry.date, showsResets: showsResets)
      }
    }
  }
}

struct ProviderView: View {
  let name: String
  let provider: WidgetSnapshot.Provider
  let now: Date
  let showsResets: Bool

  var body: some View {
    VStack(alignment: .leading, spacing: 4) {
      Text(verbatim: name).font(.headline)
      if let reading = provider.snapshot {
        // Also overtaken by a failure it is no longer the present.
        let isStale = reading.fetchedAt.isStale(at: now) || provider.message != nil
        VStack(alignment: .leading, spacing: 4) {
          ForEach(reading.windows.indices, id: \.self) { index in
            LimitView(limit: reading.windows[index], now: now, showsReset: showsResets)
          }
        }
        .opacity(isStale ? 0.5 : 1)
        AgeView(read: reading.fetchedAt, isStale: isStale)
      } else if provider.message == nil {
        NoteView(text: "Waiting for usage…")
      }
      if let message = provider.message {
        Text(verbatim: message).font(.caption2).foregroundStyle(.secondary).lineLimit(2)
      }
    }
    .frame(maxWidth: .infinity, alignment: .leading)
  }
}

struct LimitView: View {
  let limit: WidgetSnapshot.Window
  let now: Date
  let showsReset: Bool

  var body: some View {
    VStack(alignment: .leading, spacing: 1) {
      HStack {
        Text(verbatim: limit.title)
        Spacer()
        Text(verbatim: left.formatted(.number.precision(.fractionLength(0))) + "% left")
      }
      .font(.caption)
      ProgressView(value: left, total: 100).tint(colour)
      if showsReset, let resetsAt = limit.resetsAt {
        Text(verbatim: resetsAt > now ? "Resets " + resetsAt.formatted(Self.dayAndTime) : "Reset due")
          .font(.caption2)
          .foregroundStyle(.secondary)
      }
    }
  }

  private static let dayAndTime = Date.FormatStyle().weekday().hour().minute()

  private var left: Double { min(max(100 - limit.usedPercent, 0), 100) }

  private var colour: Color {
    if limit.usedPercent >= 90 { return .red }
    return limit.usedPercent >= 75 ? .orange : .accentColor
  }
}
