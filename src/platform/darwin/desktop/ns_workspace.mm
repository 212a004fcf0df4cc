// SPDX-License-Identifier: MIT
#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

#include "base/observer_list.h"
#include "platform/darwin/core/ns_text.h"
#include "platform/darwin/desktop/ns_desktop.h"

/// Calls a block whenever the application looks another way.
@interface NimboAppearanceObserver : NSObject
@end

@implementation NimboAppearanceObserver {
 @public
  void (^changed)(void);
}

- (void)observeValueForKeyPath:(NSString*)path
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  (void)path, (void)object, (void)change, (void)context;
  changed();
}

@end

namespace nimbo {
namespace {

NSString* const kAppearance = @"effectiveAppearance";

NSURL* applicationOf(NSString* identifier) {
  return [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier];
}

bool open(NSURL* application) {
  if (application == nil) return false;
  [NSWorkspace.sharedWorkspace openApplicationAtURL:application
                                      configuration:[NSWorkspaceOpenConfiguration configuration]
                                  completionHandler:nil];
  return true;
}

class NsWorkspaceOfUser final : public Workspace {
 public:
  NsWorkspaceOfUser() : appearance_([[NimboAppearanceObserver alloc] init]) {
    appearance_->changed = ^{
      observers_.notify(appearance());
    };
    [NSApplication.sharedApplication addObserver:appearance_ forKeyPath:kAppearance options:0 context:nullptr];
  }
  NsWorkspaceOfUser(const NsWorkspaceOfUser&) = delete;
  NsWorkspaceOfUser& operator=(const NsWorkspaceOfUser&) = delete;
  ~NsWorkspaceOfUser() override { [NSApplication.sharedApplication removeObserver:appearance_ forKeyPath:kAppearance]; }

  [[nodiscard]] Appearance appearance() const override {
    NSArray<NSAppearanceName>* const known = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
    NSAppearanceName const name =
        [NSApplication.sharedApplication.effectiveAppearance bestMatchFromAppearancesWithNames:known];
    return [name isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::dark : Appearance::light;
  }
  [[nodiscard]] Subscription observeAppearance(std::function<void(Appearance)> changed) override {
    return observers_.add(std::move(changed));
  }

  [[nodiscard]] bool hasSystemMonitor() const override { return applicationOf(kSystemMonitor) != nil; }
  [[nodiscard]] bool openSystemMonitor() override { return open(applicationOf(kSystemMonitor)); }

  void openLink(const std::string& url) override {
    if (NSURL* const link = [NSURL URLWithString:nsText(url)]) [NSWorkspace.sharedWorkspace openURL:link];
  }
  bool openApplication(const std::string& bundleIdentifier) override {
    return open(applicationOf(nsText(bundleIdentifier)));
  }
  void revealFile(const std::filesystem::path& file) override {
    NSURL* const place = [NSURL fileURLWithPath:nsText(file.native())];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ place ]];
  }
  void notify(const std::string& title, const std::string& text) override {
    if (NSBundle.mainBundle.bundleIdentifier == nil) return;  // the center throws then
    UNMutableNotificationContent* const content = [[UNMutableNotificationContent alloc] init];
    content.title = nsText(title);
    content.body = nsText(text);
    // One at a time, like a status.
    UNNotificationRequest* const request = [UNNotificationRequest requestWithIdentifier:@"status"
                                                                                content:content
                                                                                trigger:nil];
    UNUserNotificationCenter* const center = [UNUserNotificationCenter currentNotificationCenter];
    [center requestAuthorizationWithOptions:UNAuthorizationOptionAlert
                          completionHandler:^(BOOL granted, NSError*) {
                            if (granted) [center addNotificationRequest:request withCompletionHandler:nil];
                          }];
  }

 private:
  static inline NSString* const kSystemMonitor = @"com.apple.ActivityMonitor";

  NimboAppearanceObserver* const appearance_;
  ObserverList<Appearance> observers_;
};

class NsWorkspaceSleep final : public SystemSleep {
 public:
  [[nodiscard]] Subscription observe(std::function<void()> willSleep, std::function<void()> didWake) override {
    NSNotificationCenter* const center = NSWorkspace.sharedWorkspace.notificationCenter;
    const auto add = [center](NSNotificationName name, std::function<void()> call) {
      return [center addObserverForName:name
                                 object:nil
                                  queue:nil
                             usingBlock:^(NSNotification*) {
                               call();
                             }];
    };
    const id<NSObject> sleep = add(NSWorkspaceWillSleepNotification, std::move(willSleep));
    const id<NSObject> wake = add(NSWorkspaceDidWakeNotification, std::move(didWake));
    return Subscription([center, sleep, wake] {
      [center removeObserver:sleep];
      [center removeObserver:wake];
    });
  }
};

}  // namespace

std::unique_ptr<Workspace> makeNsWorkspace() { return std::make_unique<NsWorkspaceOfUser>(); }
std::unique_ptr<SystemSleep> makeNsSystemSleep() { return std::make_unique<NsWorkspaceSleep>(); }

std::optional<std::int32_t> runningApplication(const std::string& bundleIdentifier) {
  NSRunningApplication* const found =
      [NSRunningApplication runningApplicationsWithBundleIdentifier:nsText(bundleIdentifier)].firstObject;
  if (found == nil) return std::nullopt;
  return found.processIdentifier;
}

}  // namespace nimbo
