// SPDX-License-Identifier: MIT
#import <ServiceManagement/ServiceManagement.h>

#include "platform/darwin/core/ns_text.h"
#include "platform/darwin/desktop/ns_desktop.h"

namespace nimbo {
namespace {

class SmLoginItem final : public LoginItem {
 public:
  [[nodiscard]] LoginItemStatus status() const override {
    switch (SMAppService.mainAppService.status) {
      case SMAppServiceStatusEnabled:
        return LoginItemStatus::enabled;
      case SMAppServiceStatusRequiresApproval:
        return LoginItemStatus::requiresApproval;
      case SMAppServiceStatusNotRegistered:
      case SMAppServiceStatusNotFound:
        break;
    }
    return LoginItemStatus::notRegistered;
  }
  [[nodiscard]] Result<void, LoginItemError> registerItem() override {
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error]) return {};
    return tl::unexpected(LoginItemError{text(error.localizedDescription)});
  }
  [[nodiscard]] Result<void, LoginItemError> unregisterItem() override {
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return {};
    return tl::unexpected(LoginItemError{text(error.localizedDescription)});
  }
  void openSystemSettings() override { [SMAppService openSystemSettingsLoginItems]; }
};

class NsDates final : public Dates {
 public:
  [[nodiscard]] std::string shortDateAndTime(std::chrono::system_clock::time_point time) const override {
    return inStyle(time, NSDateFormatterShortStyle);
  }
  [[nodiscard]] std::string shortTime(std::chrono::system_clock::time_point time) const override {
    return inStyle(time, NSDateFormatterNoStyle);
  }
  [[nodiscard]] std::string abbreviatedDateAndShortTime(std::chrono::system_clock::time_point time) const override {
    return inStyle(time, NSDateFormatterMediumStyle);
  }

 private:
  static std::string inStyle(std::chrono::system_clock::time_point time, NSDateFormatterStyle dateStyle) {
    const std::chrono::duration<double> since1970 = time.time_since_epoch();
    return text([NSDateFormatter localizedStringFromDate:[NSDate dateWithTimeIntervalSince1970:since1970.count()]
                                               dateStyle:dateStyle
                                               timeStyle:NSDateFormatterShortStyle]);
  }
};

}  // namespace

std::unique_ptr<LoginItem> makeSmLoginItem() { return std::make_unique<SmLoginItem>(); }
std::unique_ptr<Dates> makeNsDates() { return std::make_unique<NsDates>(); }

}  // namespace nimbo
