// SPDX-License-Identifier: MIT
#include "ui/remote/remote_user_interface.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace nimbo {
namespace {

constexpr std::chrono::seconds kIdleLeeway{5};

}  // namespace

class RemoteUserInterface::Dashboard final : public DashboardWindow {
 public:
  explicit Dashboard(RemoteUserInterface& owner) : owner_(owner) {}
  ~Dashboard() override {
    Dashboard::hide();
    Dashboard::setEvents({});
  }
  Dashboard(const Dashboard&) = delete;
  Dashboard& operator=(const Dashboard&) = delete;

  void setEvents(DashboardEvents events) override { owner_.dashboard_.events = std::move(events); }
  void render(const DashboardContent& content) override { owner_.render(owner_.dashboard_, content); }
  void prepare() override { owner_.prepare(owner_.dashboard_); }
  [[nodiscard]] bool prepared() const override { return owner_.dashboard_.live; }
  void show(const DashboardPlace& place) override {
    owner_.place_ = place;
    owner_.mayComeBack_ = true;
    owner_.openDashboard();
  }
  void hide() override {
    owner_.tellIfRunning(CloseDashboard{});
    owner_.close(owner_.dashboard_);
  }
  [[nodiscard]] bool visible() const override { return owner_.dashboard_.visible; }

 private:
  RemoteUserInterface& owner_;
};

class RemoteUserInterface::SettingsView final : public SettingsWindow {
 public:
  explicit SettingsView(RemoteUserInterface& owner) : owner_(owner) {}
  ~SettingsView() override {
    SettingsView::close();
    SettingsView::setEvents({});
  }
  SettingsView(const SettingsView&) = delete;
  SettingsView& operator=(const SettingsView&) = delete;

  void setEvents(SettingsWindowEvents events) override { owner_.settings_.events = std::move(events); }
  void render(const SettingsWindowContent& content) override { owner_.render(owner_.settings_, content); }
  void show() override {
    owner_.mayComeBack_ = true;
    owner_.openSettings();
  }
  void close() override {
    owner_.tellIfRunning(CloseSettings{});
    owner_.close(owner_.settings_);
  }
  [[nodiscard]] bool visible() const override { return owner_.settings_.visible; }

 private:
  RemoteUserInterface& owner_;
};

class RemoteUserInterface::PendingAlert final : public Alert {
 public:
  PendingAlert(RemoteUserInterface& owner, Serial serial, const AlertContent& content, AlertAnswer answered)
      : owner_(owner), serial_(serial), content_(content), answered_(std::move(answered)) {
    owner_.alerts_.emplace(serial_, this);
  }
  ~PendingAlert() override { owner_.closeAlert(serial_); }
  PendingAlert(const PendingAlert&) = delete;
  PendingAlert& operator=(const PendingAlert&) = delete;

  void present() override { owner_.tellIfRunning(PresentAlert{serial_}); }

  [[nodiscard]] const AlertContent& content() const { return content_; }
  /// From the main loop, and at most once.
  void answer(std::optional<std::size_t> button) {
    const auto answered = std::exchange(answered_, nullptr);
    if (answered) answered(button);
  }

 private:
  RemoteUserInterface& owner_;
  const Serial serial_;
  const AlertContent content_;
  AlertAnswer answered_;
};

RemoteUserInterface::RemoteUserInterface(Services services, WindowsStarter start, DisplayNeed need)
    : services_(services), start_(std::move(start)), need_(need) {}

RemoteUserInterface::~RemoteUserInterface() = default;

void RemoteUserInterface::setAppearance(Appearance appearance) {
  appearance_ = appearance;
  tellIfRunning(SetAppearance{appearance});
}

std::unique_ptr<DashboardWindow> RemoteUserInterface::makeDashboardWindow() {
  return std::make_unique<Dashboard>(*this);
}

std::unique_ptr<SettingsWindow> RemoteUserInterface::makeSettingsWindow() {
  return std::make_unique<SettingsView>(*this);
}

std::unique_ptr<Alert> RemoteUserInterface::showAlert(const AlertContent& content, AlertAnswer answered) {
  const Serial serial = ++serial_;
  auto alert = std::make_unique<PendingAlert>(*this, serial, content, std::move(answered));
  idle_.reset();
  if (diesTooOften()) {
    services_.loop.post(lifetime_.guard([this, serial] {
      const auto found = alerts_.find(serial);
      if (found != alerts_.end()) found->second->answer(std::nullopt);
    }));
  } else {
    tell(OpenAlert{serial, content});
  }
  return alert;
}

// What both windows do.

void RemoteUserInterface::render(auto& window, const auto& content) {
  if (content == window.content) return;
  window.content = content;
  if (window.live) sendContent(window);
}

void RemoteUserInterface::sendContent(const Window<DashboardContent, DashboardEvents>& window) {
  tell(ShowDashboard{window.handled, window.content});
}

void RemoteUserInterface::sendContent(const Window<SettingsWindowContent, SettingsWindowEvents>& window) {
  tell(ShowSettings{window.handled, window.content});
}

void RemoteUserInterface::prepare(auto& window) {
  if (std::exchange(window.live, true)) return;
  sendContent(window);
}

bool RemoteUserInterface::open(auto& window) {
  if (diesTooOften()) {
    services_.workspace.notify(
        "Nimbo’s windows keep failing",
        "They ended three times within a minute. Everything else goes on; try again in a minute.");
    return false;
  }
  idle_.reset();
  prepare(window);
  window.visible = true;
  window.serial = ++serial_;
  return true;
}

// What has been overtaken is ignored: the control is hidden or disabled by now, or says something else, as a button
// that has started a session and now stops it. In any case the window shows what it should afterwards: its controls
// have changed by themselves.
void RemoteUserInterface::act(auto& window, const Acted& told) {
  if (!window.visible) return;
  window.handled = told.number;
  const auto acted = window.events.acted;
  if (acted && wording(window.content, told.event) == told.shown) acted(told.event);
  if (window.live) sendContent(window);
}

void RemoteUserInterface::openDashboard() {
  if (open(dashboard_)) tell(OpenDashboard{dashboard_.serial, place_});
}

void RemoteUserInterface::openSettings() {
  if (open(settings_)) tell(OpenSettings{settings_.serial});
}

void RemoteUserInterface::close(auto& window) {
  window.live = false;
  window.visible = false;
  somethingClosed();
}

void RemoteUserInterface::closeAlert(Serial serial) {
  alerts_.erase(serial);
  tellIfRunning(CloseAlert{serial});
  somethingClosed();
}

void RemoteUserInterface::somethingClosed() {
  if (!process_ || dashboard_.visible || settings_.visible || !alerts_.empty()) return;
  idle_ = services_.loop.every(kIdleTime, kIdleLeeway, [this] {
    idle_.reset();
    letGo();
  });
}

void RemoteUserInterface::tell(const RecordForWindows& record) {
  if (!process_) {
    process_ = start_(need_, {.received = [this](const std::string& text) { receive(text); },
                              .ended = [this](WindowsEnd end) { ended(end); }});
    tellIfRunning(SetAppearance{appearance_});
  }
  tellIfRunning(record);
}

void RemoteUserInterface::tellIfRunning(const RecordForWindows& record) {
  if (!process_ || stuck_ || process_->send(encode(record))) return;
  // One that reads no more is no better than a dead one. Not at once: the caller may be in the middle of something.
  stuck_ = true;
  services_.loop.post(lifetime_.guard([this] {
    if (stuck_) ended(WindowsEnd::died);
  }));
}

void RemoteUserInterface::receive(const std::string& text) {
  const auto record = decodeFromWindows(text);
  if (!record) return ended(WindowsEnd::died);
  std::visit([this](const auto& each) { received(each); }, *record);
}

void RemoteUserInterface::received(const WindowsReady& record) {
  if (record.version != kRecordVersion) ended(WindowsEnd::unavailable);
}

void RemoteUserInterface::received(const DashboardClosed& record) {
  if (!dashboard_.visible || record.serial != dashboard_.serial) return;
  close(dashboard_);
  if (const auto closed = dashboard_.events.closed) closed(record.by);
}

void RemoteUserInterface::received(const DashboardActed& record) { act(dashboard_, record.acted); }

void RemoteUserInterface::received(const SettingsClosed& record) {
  if (!settings_.visible || record.serial != settings_.serial) return;
  close(settings_);
  if (const auto closed = settings_.events.closed) closed();
}

void RemoteUserInterface::received(const SettingsBecameKey& /*record*/) {
  if (!settings_.visible) return;
  if (const auto becameKey = settings_.events.becameKey) becameKey();
}

void RemoteUserInterface::received(const SettingsActed& record) { act(settings_, record.acted); }

void RemoteUserInterface::received(const AlertAnswered& record) {
  const auto found = alerts_.find(record.serial);
  if (found == alerts_.end()) return;
  if (record.button && *record.button >= found->second->content().buttons.size()) return;
  found->second->answer(record.button);
}

void RemoteUserInterface::received(const MenuEntryChosen& record) {
  if (record.section >= menu_.sections.size()) return;
  const auto& entries = menu_.sections[record.section].entries;
  if (record.entry >= entries.size()) return;
  if (const auto action = entries[record.entry].action) action();
}

void RemoteUserInterface::ended(WindowsEnd end) {
  letGo();
  idle_.reset();
  if (end == WindowsEnd::died) {
    deaths_.push_back(services_.clock.uptime());
    if (deaths_.size() > kMostDeaths) deaths_.pop_front();
  } else if (!std::exchange(complained_, true)) {
    fmt::print(stderr, "nimbo: no display can be reached, so no window can be shown\n");
  }
  const bool comesBack = end == WindowsEnd::died && !diesTooOften() && std::exchange(mayComeBack_, false);
  const bool hadSettings = std::exchange(settings_.visible, false);
  const bool hadDashboard = std::exchange(dashboard_.visible, false);
  if (comesBack && hadSettings) openSettings();
  if (comesBack && hadDashboard) openDashboard();
  answerAlerts(end);
  if (comesBack) return;
  const auto settingsClosed = settings_.events.closed;
  if (hadSettings && settingsClosed) settingsClosed();
  const auto dashboardClosed = dashboard_.events.closed;
  if (hadDashboard && dashboardClosed) dashboardClosed(ClosedBy::user);
}

void RemoteUserInterface::letGo() {
  process_.reset();
  stuck_ = false;
  dashboard_.live = settings_.live = false;
  dashboard_.handled = settings_.handled = 0;
}

void RemoteUserInterface::answerAlerts(WindowsEnd end) {
  // An answer may destroy other alerts.
  const auto alerts = alerts_;
  for (const auto& [serial, alert] : alerts) {
    if (!alerts_.contains(serial)) continue;
    alert->answer(end == WindowsEnd::died ? std::optional(alert->content().cancel) : std::nullopt);
  }
}

bool RemoteUserInterface::diesTooOften() const {
  return deaths_.size() == kMostDeaths && services_.clock.uptime() - deaths_.front() < kDeathSpan;
}

}  // namespace nimbo
