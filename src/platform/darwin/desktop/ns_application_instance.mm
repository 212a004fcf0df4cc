// SPDX-License-Identifier: MIT
#include "platform/darwin/desktop/ns_application_instance.h"

#import <AppKit/AppKit.h>

#include <chrono>
#include <future>
#include <utility>

#include "platform/darwin/core/ns_text.h"

@interface NimboApplicationDelegate : NSObject <NSApplicationDelegate>
@end

@implementation NimboApplicationDelegate {
 @public
  nimbo::ApplicationInstanceHandlers handlers;
  std::function<void()> sessionEnds;
}

- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls {
  (void)application;
  std::vector<std::string> links;
  for (NSURL* url in urls) links.push_back(nimbo::text(url.absoluteString));
  if (handlers.open) handlers.open(links);
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)visible {
  (void)application, (void)visible;
  if (handlers.activate) handlers.activate();
  return NO;
}

// The answer to the question whether to quit comes later, and quits by itself.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  (void)application;
  constexpr AEKeyword kQuitReason = 'why?';  // of a log-out, restart or shutdown
  if ([NSAppleEventManager.sharedAppleEventManager.currentAppleEvent attributeDescriptorForKeyword:kQuitReason] !=
      nil) {
    sessionEnds();
    return NSTerminateNow;
  }
  const auto quit = handlers.actions.find("quit");
  if (quit == handlers.actions.end()) return NSTerminateNow;
  quit->second();
  return NSTerminateCancel;
}

@end

namespace nimbo {

struct NsApplicationInstance::Delegate {
  NimboApplicationDelegate* object;
};

NsApplicationInstance::NsApplicationInstance() : delegate_(new Delegate{[[NimboApplicationDelegate alloc] init]}) {
  NSApplication* const application = NSApplication.sharedApplication;
  [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
  delegate_->object->sessionEnds = [this] { sessionEnd_.notify(); };
  application.delegate = delegate_->object;
}

NsApplicationInstance::~NsApplicationInstance() { NSApplication.sharedApplication.delegate = nil; }

// The system starts an application once; only who runs the file itself starts it again.
Result<InstanceRole, InstanceError> NsApplicationInstance::claim(const std::vector<std::string>& links,
                                                                 ApplicationInstanceHandlers handlers) {
  NSString* const identifier = NSBundle.mainBundle.bundleIdentifier;
  NSArray<NSRunningApplication*>* const running =
      identifier != nil ? [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier] : nil;
  for (NSRunningApplication* each in running) {
    if ([each isEqual:NSRunningApplication.currentApplication] || each.bundleURL == nil) continue;
    NSMutableArray<NSURL*>* const urls = [NSMutableArray array];
    for (const std::string& link : links) {
      if (NSURL* const url = [NSURL URLWithString:nsText(link)]) [urls addObject:url];
    }
    // Done when the system has answered: this process ends then.
    const auto answered = std::make_shared<std::promise<void>>();
    const auto done = ^(NSRunningApplication*, NSError*) {
      answered->set_value();
    };
    NSWorkspaceOpenConfiguration* const configuration = [NSWorkspaceOpenConfiguration configuration];
    NSWorkspace* const workspace = NSWorkspace.sharedWorkspace;
    if (urls.count == 0) {
      [workspace openApplicationAtURL:each.bundleURL configuration:configuration completionHandler:done];
    } else {
      [workspace openURLs:urls withApplicationAtURL:each.bundleURL configuration:configuration completionHandler:done];
    }
    answered->get_future().wait_for(std::chrono::seconds(3));
    return InstanceRole::later;
  }
  delegate_->object->handlers = std::move(handlers);
  return InstanceRole::first;
}

void NsApplicationInstance::release() { delegate_->object->handlers = {}; }

void NsApplicationInstance::run() { [NSApplication.sharedApplication run]; }

// Takes effect with the next event.
void NsApplicationInstance::stop() {
  NSApplication* const application = NSApplication.sharedApplication;
  [application stop:nil];
  NSEvent* const event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                            location:NSMakePoint(0, 0)
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                             subtype:0
                                               data1:0
                                               data2:0];
  if (event != nil) [application postEvent:event atStart:YES];
}

}  // namespace nimbo
