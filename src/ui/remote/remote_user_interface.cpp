// SPDX-License-Identifier: MIT
#include "ui/remote/remote_user_interface.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/platform_services.h"

namespace nimbo {
namespace {

/// Why there are no windows, for the terminal and for the user.
std::pair<const char*, const char*> reasonOf(WindowsEnd end) {
  switch (end) {
    case WindowsEnd::noDisplay:
      return {"no display can be reached", "No display can be reached."};
    case WindowsEnd::noWaylandPlugin:
      return {"Qt's plugin for Wayland is missing",
              "Qt’s plugin for Wayland is missing. Install the package qt6-wayland."};
    default:
      return {"the program that shows them cannot run", "A part of it is missing. Install it again."};
  }
}

}  // namespace

/// A window as this side knows it, whatever it shows.
class RemoteUserInterface::Window {
 public:
  Window(RemoteUserInterface& owner, WindowName name) : owner_(owner), name_(name) { owner_.windowOf(name) = this; }
  virtual ~Window() {
    owner_.tellIfRunning(Close{name_});
    owner_.windowOf(name_) = nullptr;
    owner_.somethingClosed();
  }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  [[nodiscard]] bool isOpen() const { return open_; }
  [[nodiscard]] bool isOpen(Serial serial) const { return open_ && serial == serial_; }
  [[nodiscard]] const WindowEvents& events() const { return events_; }

  void openAt(const WindowPlace& place) {
    place_ = place;
    owner_.idle_.reset();
    makeLive();
    open_ = true;
    serial_ = ++owner_.serial_;
    owner_.tell(Open{name_, serial_, place_});
  }
  void openAgain() { openAt(place_); }
  void goAway(ClosedBy by) {
    if (!std::exchange(open_, false)) return;
    live_ = false;
    owner_.somethingClosed();
    if (const auto closed = events_.closed) closed(by);
  }
  // What has been overtaken is ignored: the control is hidden or disabled by now, or says something else, as a button
  // that has started a session and now stops it. In any case the window shows what it should afterwards: its controls
  // have changed by themselves.
  void act(const Acted& told) {
    handled_ = told.number;
    const auto acted = events_.acted;
    if (acted && wordingNow(told.event) == told.shown) acted(told.event);
    if (live_) sendContent(handled_);
  }
  /// The process that showed it is gone.
  void forgetProcess() {
    live_ = false;
    handled_ = 0;
    if (!open_) forgetContent();
  }

 protected:
  /// The process gets the content and from then on every later one.
  void makeLive() {
    if (!std::exchange(live_, true)) sendContent(handled_);
  }
  virtual void sendContent(Serial handled) = 0;
  /// Until it is rendered again, before it is opened.
  virtual void forgetContent() = 0;
  [[nodiscard]] virtual std::optional<std::string> wordingNow(const ControlEvent& event) const = 0;

  RemoteUserInterface& owner_;
  const WindowName name_;
  WindowEvents events_;
  WindowPlace place_;
  Serial serial_ = 0;
  Serial handled_ = 0;  ///< the last thing that the user did in it, for the process that runs
  bool live_ = false;
  bool open_ = false;
};

template <class Content>
class RemoteUserInterface::WindowOf final : public ContentWindow<Content>, private Window {
 public:
  using Window::Window;

  void setEvents(WindowEvents events) override { events_ = std::move(events); }
  void render(const Content& content) override {
    if (content == content_) return;
    content_ = content;
    if (live_) sendContent(handled_);
  }
  void prepare() override { makeLive(); }
  [[nodiscard]] bool prepared() const override { return live_; }
  void show(const WindowPlace& place) override {
    if (owner_.diesTooOften()) {
      return owner_.services_.workspace.notify(
          "Nimbo’s windows keep failing",
          "They ended three times within a minute. Everything else goes on; try again in a minute.");
    }
    owner_.mayComeBack_ = true;
    openAt(place);
  }
  void hide() override {
    if (!isOpen()) return;
    owner_.tellIfRunning(Close{name_});
    goAway(ClosedBy::other);
  }
  [[nodiscard]] bool visible() const override { return isOpen(); }

 private:
  void sendContent(Serial handled) override { owner_.tell(Show<Content>{handled, content_}); }
  void forgetContent() override { content_ = {}; }
  [[nodiscard]] std::optional<std::string> wordingNow(const ControlEvent& event) const override {
    return wording(content_, event);
  }

  Content content_;
};

class RemoteUserInterface::PendingAlert final : public Alert {
 public:
  PendingAlert(RemoteUserInterface& owner, AlertContent content, AlertAnswer answered)
      : owner_(owner), serial_(++owner.serial_), content_(std::move(content)), answered_(std::move(answered)) {
    owner_.alerts_.emplace(serial_, this);
    owner_.idle_.reset();
  }
  ~PendingAlert() override {
    owner_.alerts_.erase(serial_);
    owner_.tellIfRunning(CloseAlert{serial_});
    owner_.somethingClosed();
  }
  PendingAlert(const PendingAlert&) = delete;
  PendingAlert& operator=(const PendingAlert&) = delete;

  void present() override { owner_.tellIfRunning(PresentAlert{serial_}); }

  [[nodiscard]] Serial serial() const { return serial_; }
  [[nodiscard]] const AlertContent& content() const { return content_; }
  /// From the main loop; only the first one counts. May destroy this.
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
  return std::make_unique<WindowOf<DashboardContent>>(*this, WindowName::dashboard);
}

std::unique_ptr<SettingsWindow> RemoteUserInterface::makeSettingsWindow() {
  return std::make_unique<WindowOf<SettingsWindowContent>>(*this, WindowName::settings);
}

std::unique_ptr<Alert> RemoteUserInterface::showAlert(const AlertContent& content, AlertAnswer answered) {
  auto alert = std::make_unique<PendingAlert>(*this, content, std::move(answered));
  if (diesTooOften()) {
    services_.loop.post(lifetime_.guard([this, serial = alert->serial()] {
      received(AlertAnswered{serial, std::nullopt});
    }));
  } else {
    tell(OpenAlert{alert->serial(), content});
  }
  return alert;
}

void RemoteUserInterface::somethingClosed() {
  if (!process_ || !alerts_.empty() || anyOpen()) return;
  idle_ = services_.loop.every(kIdleTime, std::chrono::seconds(5), [this] {
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
  if (record.version != kRecordVersion) ended(WindowsEnd::cannotRun);
}

void RemoteUserInterface::received(const Acted& record) {
  Window* const window = windowOf(record.window);
  if (window != nullptr && window->isOpen()) window->act(record);
}

void RemoteUserInterface::received(const BecameKey& record) {
  Window* const window = windowOf(record.window);
  if (window == nullptr || !window->isOpen()) return;
  if (const auto becameKey = window->events().becameKey) becameKey();
}

void RemoteUserInterface::received(const Closed& record) {
  Window* const window = windowOf(record.window);
  if (window != nullptr && window->isOpen(record.serial)) window->goAway(record.by);
}

void RemoteUserInterface::received(const AlertAnswered& record) {
  const auto found = alerts_.find(record.serial);
  if (found == alerts_.end()) return;
  if (record.button && *record.button >= found->second->content().buttons.size()) return;
  found->second->answer(record.button);
}

void RemoteUserInterface::received(const MenuChosen& record) {
  if (const auto chosen = menuChosen_) chosen(record.role);
}

void RemoteUserInterface::ended(WindowsEnd end) {
  letGo();
  idle_.reset();
  if (end == WindowsEnd::died) {
    deaths_.push_back(services_.clock.uptime());
    if (deaths_.size() > kMostDeaths) deaths_.pop_front();
  } else {
    complain(end);
  }
  // An answer may destroy other alerts.
  const auto alerts = alerts_;
  for (const auto& [serial, alert] : alerts) {
    if (!alerts_.contains(serial)) continue;
    alert->answer(end == WindowsEnd::died ? std::optional(alert->content().cancel) : std::nullopt);
  }
  const bool comesBack = end == WindowsEnd::died && !diesTooOften() && std::exchange(mayComeBack_, false);
  for (const auto name : {WindowName::settings, WindowName::dashboard}) {
    Window* const window = windowOf(name);
    if (window == nullptr || !window->isOpen()) continue;
    if (comesBack) {
      window->openAgain();
    } else {
      window->goAway(ClosedBy::other);
    }
  }
}

void RemoteUserInterface::complain(WindowsEnd end) {
  const auto [why, advice] = reasonOf(end);
  if (!std::exchange(complained_, true)) fmt::print(stderr, "nimbo: no window can be shown: {}\n", why);
  if (anyOpen()) services_.workspace.notify("Nimbo can’t show its windows", advice);
}

void RemoteUserInterface::letGo() {
  process_.reset();
  stuck_ = false;
  for (Window* const window : windows_) {
    if (window != nullptr) window->forgetProcess();
  }
}

bool RemoteUserInterface::anyOpen() const {
  return std::ranges::any_of(windows_, [](const Window* window) { return window != nullptr && window->isOpen(); });
}

bool RemoteUserInterface::diesTooOften() const {
  return deaths_.size() == kMostDeaths && services_.clock.uptime() - deaths_.front() < kDeathSpan;
}

std::unique_ptr<UserInterface> makeUserInterface(PlatformServices& platform, DisplayNeed need) {
  const RemoteUserInterface::Services services{platform.mainLoop(), *platform.readers().clock, platform.workspace()};
  return std::make_unique<RemoteUserInterface>(services, platform.windowsStarter(), need);
}

}  // namespace nimbo
