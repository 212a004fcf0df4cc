// SPDX-License-Identifier: MIT
#include "ui/qt/windows/window_system.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QWidget>

/// The target of the menu's entries.
@interface NimboMenuTarget : NSObject
@end

@implementation NimboMenuTarget {
 @public
  nimbo::MenuListener chosen;
}

- (void)chosen:(NSMenuItem*)line {
  chosen(static_cast<nimbo::MenuRole>(line.tag));
}

@end

namespace nimbo {
namespace {

NSWindow* nativeWindow(const QWidget& window) {
  NSView* const view = (__bridge NSView*)reinterpret_cast<void*>(window.winId());
  return view.window;
}

/// Over all other windows as menus are, on the space that the user sees.
void makeMenuPanel(NSWindow* panel) {
  panel.styleMask |= NSWindowStyleMaskNonactivatingPanel;
  panel.level = NSPopUpMenuWindowLevel;
  panel.collectionBehavior =
      NSWindowCollectionBehaviorMoveToActiveSpace | NSWindowCollectionBehaviorFullScreenAuxiliary;
  panel.animationBehavior = NSWindowAnimationBehaviorNone;
  panel.opaque = NO;
  panel.backgroundColor = NSColor.clearColor;
  panel.hasShadow = YES;
  panel.hidesOnDeactivate = NO;
  panel.releasedWhenClosed = NO;
}

// macOS 14 has another name for it.
void activateApplication() { [NSApp activateIgnoringOtherApps:YES]; }

NSMenu* nsMenu(const MainMenuSection& section, NimboMenuTarget* target) {
  NSMenu* const menu = [[NSMenu alloc] initWithTitle:@(section.title.c_str())];
  for (const MainMenuEntry& entry : section.entries) {
    if (entry.role == MenuRole::separator) {
      [menu addItem:[NSMenuItem separatorItem]];
      continue;
    }
    NSMenuItem* const line = [[NSMenuItem alloc] initWithTitle:@(entry.title.c_str())
                                                        action:@selector(chosen:)
                                                 keyEquivalent:@(entry.keyEquivalent.c_str())];
    line.target = target;
    line.tag = static_cast<NSInteger>(entry.role);
    [menu addItem:line];
  }
  return menu;
}

/// The application is the program's, which runs its loop; the toolkit is a guest in it.
class CocoaWindowSystem final : public WindowSystem {
 public:
  CocoaWindowSystem() = default;
  CocoaWindowSystem(const CocoaWindowSystem&) = delete;
  CocoaWindowSystem& operator=(const CocoaWindowSystem&) = delete;
  ~CocoaWindowSystem() override { NSApp.mainMenu = nil; }

  [[nodiscard]] bool compositing() const override { return true; }
  // The dashboard is a tool, which the toolkit makes a panel that can have the keyboard.
  [[nodiscard]] bool popupsHearAllClicks() const override { return false; }
  [[nodiscard]] bool inputIsFree() override { return true; }

  // Those who are told may end the subscription from within.
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> activated) override {
    // Only of clicks that other applications get.
    const id monitor =
        [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                               handler:^(NSEvent*) {
                                                 const auto call = activated;
                                                 call();
                                               }];
    NSNotificationCenter* const center = NSWorkspace.sharedWorkspace.notificationCenter;
    const id<NSObject> observer = [center addObserverForName:NSWorkspaceDidActivateApplicationNotification
                                                      object:nil
                                                       queue:nil
                                                  usingBlock:^(NSNotification* notification) {
                                                    NSRunningApplication* const front =
                                                        notification.userInfo[NSWorkspaceApplicationKey];
                                                    if ([front isEqual:NSRunningApplication.currentApplication]) return;
                                                    const auto call = activated;
                                                    call();
                                                  }];
    return Subscription([monitor, center, observer] {
      if (monitor != nil) [NSEvent removeMonitor:monitor];
      [center removeObserver:observer];
    });
  }

  void hang(QWidget& window, const QRect& frame, const Hanging& /*hanging*/) override {
    window.setGeometry(frame);
    if (window.isVisible()) return;
    // The toolkit hides its tools while another application is in front, and asks when it makes their panels.
    window.setAttribute(Qt::WA_MacAlwaysShowToolWindow);
    makeMenuPanel(nativeWindow(window));
    // Only the application in front has the keyboard.
    activateApplication();
  }

  // The toolkit itself puts a modal window on the screen in a loop of its own alone, which does not run here.
  void activate(QWidget& window) override {
    activateApplication();
    [nativeWindow(window) makeKeyAndOrderFront:nil];
  }

  [[nodiscard]] bool showMenu(const MenuListener& chosen) override {
    menuTarget_->chosen = chosen;
    NSMenu* const bar = [[NSMenu alloc] initWithTitle:@""];
    for (const MainMenuSection& section : mainMenu()) {
      NSMenuItem* const item = [[NSMenuItem alloc] initWithTitle:@(section.title.c_str()) action:nil keyEquivalent:@""];
      item.submenu = nsMenu(section, menuTarget_);
      [bar addItem:item];
    }
    NSApp.mainMenu = bar;
    return true;
  }

 private:
  NimboMenuTarget* const menuTarget_ = [[NimboMenuTarget alloc] init];
};

}  // namespace

std::unique_ptr<WindowSystem> makeWindowSystem() { return std::make_unique<CocoaWindowSystem>(); }

// It would give the application another delegate and menu, and make it one with an icon in the Dock.
void prepareToolkit() {
  QCoreApplication::setAttribute(Qt::AA_PluginApplication);
  qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
}

Result<std::string, WindowsEnd> reachablePlatform() { return "cocoa"; }

}  // namespace nimbo
