// SPDX-License-Identifier: MIT
#include "platform/darwin/update/framework_updater.h"

#import <Foundation/Foundation.h>

// The framework is looked up when the program runs, so what is used of it is declared here.
@protocol NimboFrameworkUpdater <NSObject>
@property(readonly) BOOL canCheckForUpdates;
@property BOOL automaticallyChecksForUpdates;
@end

@protocol NimboFrameworkController <NSObject>
- (instancetype)initWithStartingUpdater:(BOOL)start updaterDelegate:(id)updater userDriverDelegate:(id)driver;
@property(readonly) id<NimboFrameworkUpdater> updater;
- (void)checkForUpdates:(id)sender;
@end

namespace nimbo {
namespace {

class FrameworkUpdater final : public Updater {
 public:
  explicit FrameworkUpdater(id<NimboFrameworkController> controller) : controller_(controller) {}

  [[nodiscard]] bool canCheckForUpdates() const override { return controller_.updater.canCheckForUpdates; }
  void checkForUpdates() override { [controller_ checkForUpdates:nil]; }
  [[nodiscard]] bool automaticallyChecksForUpdates() const override {
    return controller_.updater.automaticallyChecksForUpdates;
  }
  void setAutomaticallyChecksForUpdates(bool on) override { controller_.updater.automaticallyChecksForUpdates = on; }

 private:
  const id<NimboFrameworkController> controller_;
};

}  // namespace

std::unique_ptr<Updater> makeFrameworkUpdater() {
  NSString* const path =
      [NSBundle.mainBundle.privateFrameworksPath stringByAppendingPathComponent:@"Sparkle.framework"];
  NSBundle* const framework = path != nil ? [NSBundle bundleWithPath:path] : nil;
  if (![framework load]) return nullptr;
  const Class made = [framework classNamed:@"SPUStandardUpdaterController"];
  const id<NimboFrameworkController> controller =
      [static_cast<id<NimboFrameworkController>>([made alloc]) initWithStartingUpdater:YES
                                                                       updaterDelegate:nil
                                                                    userDriverDelegate:nil];
  if (controller == nil) return nullptr;
  return std::make_unique<FrameworkUpdater>(controller);
}

}  // namespace nimbo
