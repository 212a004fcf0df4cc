// SPDX-License-Identifier: MIT
import Foundation

/// What the program shares with its widgets (src/app/widgets/widget_publisher.h): the names are the file's keys. Its
/// dates are seconds since 2001, which is what a decoder takes numbers for.
struct WidgetSnapshot: Decodable {
  struct Window: Decodable {
    let title: String
    let usedPercent: Double
    let resetsAt: Date?
  }

  struct Reading: Decodable {
    let windows: [Window]
    let fetchedAt: Date
    let source: String?
  }

  struct Provider: Decodable {
    let enabled: Bool
    let snapshot: Reading?
    let message: String?
    let isRefreshing: Bool
  }

  let date: Date
  let temperature: Double?
  let temperatureDate: Date?
  let temperatureEnabled: Bool
  let codex: Provider
  let claude: Provider

  /// Nil when there is no file, or none that reads.
  static func read() -> WidgetSnapshot? {
    guard let group = Bundle.main.object(forInfoDictionaryKey: "NimboAppGroup") as? String, !group.isEmpty,
      let folder = FileManager.default.containerURL(forSecurityApplicationGroupIdentifier: group),
      let contents = try? Data(contentsOf: folder.appendingPathComponent("usage-snapshot.json"))
    else { return nil }
    return try? JSONDecoder().decode(WidgetSnapshot.self, from: contents)
  }
}

/// As long as in the program.
private let freshFor: TimeInterval = 900

/// Of the time of a reading.
extension Date {
  func isStale(at now: Date) -> Bool { now.timeIntervalSince(self) > freshFor }
  var becomesStale: Date { addingTimeInterval(freshFor + 1) }
}
