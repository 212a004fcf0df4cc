// SPDX-License-Identifier: MIT
import SwiftUI
import WidgetKit

struct TemperatureWidget: Widget {
  var body: some WidgetConfiguration {
    StaticConfiguration(
      kind: "com.quellwerk.Nimbo.temperature",
      provider: SnapshotProvider { snapshot in snapshot.temperatureDate.map { [$0.becomesStale] } ?? [] }
    ) { entry in
      TemperatureView(entry: entry).asWidget(opening: "nimbo://resources")
    }
    .configurationDisplayName("CPU Temperature")
    .description("How hot the processor is.")
    .supportedFamilies([.systemSmall])
  }
}

struct TemperatureView: View {
  let entry: SnapshotEntry

  var body: some View {
    VStack(alignment: .leading, spacing: 6) {
      Text("CPU temperature").font(.headline)
      if let snapshot = entry.snapshot {
        if !snapshot.temperatureEnabled {
          NoteView(text: "Switch on the temperature in Nimbo’s settings.")
        } else if let celsius = snapshot.temperature, let read = snapshot.temperatureDate {
          let isStale = read.isStale(at: entry.date)
          Text(verbatim: celsius.formatted(.number.precision(.fractionLength(0))) + " °C")
            .font(.largeTitle)
            .opacity(isStale ? 0.5 : 1)
          AgeView(read: read, isStale: isStale)
        } else {
          NoteView(text: "Not read yet")
        }
      } else {
        NoteView(text: "No data")
      }
    }
  }
}
