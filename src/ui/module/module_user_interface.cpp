// SPDX-License-Identifier: MIT
#include "ui/module/module_user_interface.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

#include "base/lifetime.h"
#include "platform/platform_services.h"

namespace nimbo {

template <class Content>
class ModuleUserInterface::MissingWindow final : public ContentWindow<Content> {
 public:
  explicit MissingWindow(ModuleUserInterface& owner) : owner_(owner) {}

  void setEvents(WindowEvents events) override { events_ = std::move(events); }
  void render(const Content& /*content*/) override {}
  void show(const WindowPlace& /*place*/) override {
    owner_.complain();
    owner_.services_.loop.post(lifetime_.guard([this] {
      if (const auto closed = events_.closed) closed(ClosedBy::other);
    }));
  }
  void hide() override {}
  [[nodiscard]] bool visible() const override { return false; }
  [[nodiscard]] bool prepared() const override { return false; }

 private:
  ModuleUserInterface& owner_;
  WindowEvents events_;
  Lifetime lifetime_;
};

class ModuleUserInterface::MissingAlert final : public Alert {
 public:
  MissingAlert(MainLoop& loop, AlertAnswer answered) {
    loop.post(lifetime_.guard([answered = std::move(answered)] { answered(std::nullopt); }));
  }

  void present() override {}

 private:
  Lifetime lifetime_;
};

ModuleUserInterface::ModuleUserInterface(Services services, DisplayNeed need) : services_(services), need_(need) {}

ModuleUserInterface::~ModuleUserInterface() = default;

void ModuleUserInterface::setAppearance(Appearance appearance) {
  appearance_ = appearance;
  if (module_ && *module_) (**module_)->setAppearance(appearance);
}

void ModuleUserInterface::setMenuListener(MenuListener chosen) {
  menuChosen_ = std::move(chosen);
  if (module_ && *module_) (**module_)->setMenuListener(menuChosen_);
}

std::unique_ptr<DashboardWindow> ModuleUserInterface::makeDashboardWindow() {
  if (auto* const module = loaded()) return module->makeDashboardWindow();
  return std::make_unique<MissingWindow<DashboardContent>>(*this);
}

std::unique_ptr<SettingsWindow> ModuleUserInterface::makeSettingsWindow() {
  if (auto* const module = loaded()) return module->makeSettingsWindow();
  return std::make_unique<MissingWindow<SettingsWindowContent>>(*this);
}

std::unique_ptr<Alert> ModuleUserInterface::showAlert(const AlertContent& content, AlertAnswer answered) {
  if (auto* const module = loaded()) return module->showAlert(content, std::move(answered));
  complain();
  return std::make_unique<MissingAlert>(services_.loop, std::move(answered));
}

UserInterface* ModuleUserInterface::loaded() {
  if (!module_) {
    module_ = load();
    if (*module_) {
      (**module_)->setAppearance(appearance_);
      (**module_)->setMenuListener(menuChosen_);
    } else {
      fmt::print(stderr, "nimbo: no window can be shown: {}\n", module_->error());
    }
  }
  return *module_ ? (*module_)->get() : nullptr;
}

Result<std::unique_ptr<UserInterface>, std::string> ModuleUserInterface::load() {
  const auto symbol = services_.modules.symbol("nimbo-ui", kUserInterfaceEntryName);
  if (!symbol) return tl::unexpected(symbol.error().message);
  auto made = std::unique_ptr<UserInterface>(reinterpret_cast<UserInterfaceEntry>(*symbol)(need_));
  if (!made) return tl::unexpected(std::string("No display can be reached."));
  return made;
}

void ModuleUserInterface::complain() {
  if (!std::exchange(complained_, true)) {
    services_.workspace.notify("Nimbo can’t show its windows", module_->error());
  }
}

std::unique_ptr<UserInterface> makeUserInterface(PlatformServices& platform, DisplayNeed need) {
  const ModuleUserInterface::Services services{platform.mainLoop(), platform.modules(), platform.workspace()};
  return std::make_unique<ModuleUserInterface>(services, need);
}

}  // namespace nimbo
