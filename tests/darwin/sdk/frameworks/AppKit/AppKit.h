// SPDX-License-Identifier: MIT
// What the program uses of AppKit, as Apple documents it. Only for compilers that have no macOS.
#pragma once

#import <Foundation/Foundation.h>
#include <sys/types.h>

#pragma clang assume_nonnull begin

typedef NSString* NSAppearanceName;
@class NSButton, NSMenu, NSScreen, NSView, NSWindow;

@interface NSColor : NSObject
@property(class, readonly, strong) NSColor* blackColor;
@property(class, readonly, strong) NSColor* clearColor;
- (NSColor*)colorWithAlphaComponent:(double)alpha;
- (void)setFill;
@end

@interface NSGraphicsContext : NSObject
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

typedef enum NSWindingRule : NSUInteger { NSWindingRuleNonZero = 0, NSWindingRuleEvenOdd = 1 } NSWindingRule;
@interface NSBezierPath : NSObject
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(double)xRadius yRadius:(double)yRadius;
@property NSWindingRule windingRule;
- (void)appendBezierPath:(NSBezierPath*)path;
- (void)addClip;
- (void)fill;
@end

@interface NSImage : NSObject
+ (NSImage*)imageWithSize:(NSSize)size flipped:(BOOL)flipped drawingHandler:(BOOL (^)(NSRect rect))handler;
- (void)setTemplate:(BOOL)isTemplate;
@end

typedef enum NSEventType : NSUInteger {
  NSEventTypeLeftMouseDown = 1,
  NSEventTypeLeftMouseUp = 2,
  NSEventTypeRightMouseDown = 3,
  NSEventTypeRightMouseUp = 4,
  NSEventTypeApplicationDefined = 15,
} NSEventType;
typedef unsigned long long NSEventMask;
enum : NSEventMask {
  NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
  NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
  NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
  NSEventMaskRightMouseUp = 1ULL << NSEventTypeRightMouseUp,
};
typedef enum NSEventModifierFlags : NSUInteger {
  NSEventModifierFlagControl = 1 << 18,
  NSEventModifierFlagOption = 1 << 19,
} NSEventModifierFlags;
@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSUInteger)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)window
                                context:(nullable NSGraphicsContext*)context
                                subtype:(short)subtype
                                  data1:(NSInteger)data1
                                  data2:(NSInteger)data2;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent* event))handler;
+ (void)removeMonitor:(id)monitor;
@end

@interface NSResponder : NSObject
@end
@interface NSView : NSResponder
@property(readonly) NSRect bounds;
@property(nullable, readonly, assign) NSWindow* window;
@property(nullable, copy) NSString* toolTip;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView*)view;
@end
typedef NSUInteger NSWindowStyleMask;
enum : NSWindowStyleMask {
  NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};
typedef NSUInteger NSWindowCollectionBehavior;
enum : NSWindowCollectionBehavior {
  NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
  NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};
typedef enum NSWindowAnimationBehavior : NSInteger {
  NSWindowAnimationBehaviorNone = 2,
} NSWindowAnimationBehavior;
typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSPopUpMenuWindowLevel = 101;
@interface NSWindow : NSResponder
@property NSWindowStyleMask styleMask;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSWindowAnimationBehavior animationBehavior;
@property(getter=isOpaque) BOOL opaque;
@property(null_resettable, copy) NSColor* backgroundColor;
@property BOOL hasShadow;
@property BOOL hidesOnDeactivate;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (void)makeKeyAndOrderFront:(nullable id)sender;
@end
@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@end

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (void)performClick:(nullable id)sender;
@end
typedef enum NSCellImagePosition : NSUInteger { NSImageOnly = 1, NSImageLeading = 7 } NSCellImagePosition;
@interface NSButton : NSControl
@property(copy) NSString* title;
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
- (void)highlight:(BOOL)on;
- (void)setAccessibilityLabel:(nullable NSString*)label;
@end

@interface NSStatusBarButton : NSButton
@end
@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button;
@property(nullable, strong) NSMenu* menu;
@property(null_resettable, copy) NSString* autosaveName;
@end
@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(double)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end
static const double NSVariableStatusItemLength = -1;

@interface NSMenuItem : NSObject
- (instancetype)initWithTitle:(NSString*)title action:(nullable SEL)action keyEquivalent:(NSString*)keyEquivalent;
+ (NSMenuItem*)separatorItem;
@property(nullable, weak) id target;
@property(nullable, strong) NSMenu* submenu;
@property NSInteger tag;
@property(getter=isEnabled) BOOL enabled;
@end
@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuDidClose:(NSMenu*)menu;
@end
@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
@property BOOL autoenablesItems;
@property(nullable, weak) id<NSMenuDelegate> delegate;
@end

@interface NSAppearance : NSObject
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names;
@end
extern NSAppearanceName const NSAppearanceNameAqua;
extern NSAppearanceName const NSAppearanceNameDarkAqua;

typedef enum NSApplicationActivationPolicy : NSInteger {
  NSApplicationActivationPolicyAccessory = 1,
} NSApplicationActivationPolicy;
typedef enum NSApplicationTerminateReply : NSUInteger {
  NSTerminateCancel = 0,
  NSTerminateNow = 1,
} NSApplicationTerminateReply;
@class NSApplication;
@protocol NSApplicationDelegate <NSObject>
@optional
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)visible;
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application;
@end
@interface NSApplication : NSResponder
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, strong) NSMenu* mainMenu;
@property(nullable, readonly, strong) NSEvent* currentEvent;
@property(readonly, strong) NSAppearance* effectiveAppearance;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activate API_AVAILABLE(macos(14.0));
- (void)activateIgnoringOtherApps:(BOOL)ignore;
- (void)run;
- (void)stop:(nullable id)sender;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)atStart;
@end
extern __kindof NSApplication* _Null_unspecified NSApp;

@interface NSRunningApplication : NSObject
@property(class, readonly, strong) NSRunningApplication* currentApplication;
@property(readonly) pid_t processIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier;
- (BOOL)isEqual:(nullable id)other;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end
@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
- (BOOL)openURL:(NSURL*)url;
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier;
- (void)openApplicationAtURL:(NSURL*)url
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(nullable void (^)(NSRunningApplication* _Nullable application,
                                                NSError* _Nullable error))completionHandler;
- (void)openURLs:(NSArray<NSURL*>*)urls
    withApplicationAtURL:(NSURL*)application
           configuration:(NSWorkspaceOpenConfiguration*)configuration
       completionHandler:
           (nullable void (^)(NSRunningApplication* _Nullable application, NSError* _Nullable error))completionHandler;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls;
@end
extern NSNotificationName const NSWindowDidChangeScreenNotification;
extern NSNotificationName const NSWindowDidMoveNotification;
extern NSNotificationName const NSWindowDidResizeNotification;
extern NSNotificationName const NSWorkspaceWillSleepNotification;
extern NSNotificationName const NSWorkspaceDidWakeNotification;
extern NSNotificationName const NSWorkspaceDidActivateApplicationNotification;
extern NSString* const NSWorkspaceApplicationKey;

#pragma clang assume_nonnull end
