// SPDX-License-Identifier: MIT
import Foundation
import WidgetKit

struct SnapshotEntry: TimelineEntry {
  let date: Date
  let snapshot: WidgetSnapshot?
}

struct SnapshotProvider: TimelineProvider {
  /// When a widget says something else of the same snapshot.
  let changes: @Sendable (WidgetSnapshot) -> [Date]

  func placeholder(in context: Context) -> SnapshotEntry {
    SnapshotEntry(date: Date(), snapshot: nil)
  }

  func getSnapshot(in context: Context, completion: @escaping (SnapshotEntry) -> Void) {
    completion(SnapshotEntry(date: Date(), snapshot: WidgetSnapshot.read()))
  }

  func getTimeline(in context: Context, completion: @escaping (Timeline<SnapshotEntry>) -> Void) {
    let now = Date()
    let snapshot = WidgetSnapshot.read()
    let later = (snapshot.map(changes) ?? []).filter { $0 > now }.sorted()
    let entries = ([now] + later).map { SnapshotEntry(date: $0, snapshot: snapshot) }
    // The program asks for a new timeline after each write; the system does not grant all that are asked for.
    completion(Timeline(entries: entries, policy: .after(now.addingTimeInterval(900))))
  }
}
