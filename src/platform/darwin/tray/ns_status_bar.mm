// SPDX-License-Identifier: MIT
#include "platform/darwin/tray/ns_status_bar.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/darwin/core/ns_text.h"

namespace nimbo {
namespace {

NSRect nsRect(const Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

NSBezierPath* path(const RoundedRect& shape) {
  return [NSBezierPath bezierPathWithRoundedRect:nsRect(shape.rect) xRadius:shape.radius yRadius:shape.radius];
}

void draw(const TemplateShape& shape) {
  [NSGraphicsContext saveGraphicsState];
  if (shape.clip) [path(*shape.clip) addClip];
  NSBezierPath* const outline = path(shape.outline);
  if (shape.hole) {
    [outline appendBezierPath:path(*shape.hole)];
    outline.windingRule = NSWindingRuleEvenOdd;
  }
  [[NSColor.blackColor colorWithAlphaComponent:shape.alpha] setFill];
  [outline fill];
  [NSGraphicsContext restoreGraphicsState];
}

/// Drawn as large as the bar needs it, which gives it its colour.
NSImage* nsImage(const TemplateImage& image) {
  NSImage* const drawn = [NSImage imageWithSize:NSMakeSize(TemplateImage::kSide, TemplateImage::kSide)
                                        flipped:NO
                                 drawingHandler:^BOOL(NSRect) {
                                   for (const TemplateShape& shape : image.shapes) draw(shape);
                                   return YES;
                                 }];
  [drawn setTemplate:YES];
  return drawn;
}

/// Where a view is, from the upper left corner of the first screen downwards.
std::optional<Rect> placeOf(NSView* view) {
  NSScreen* const first = NSScreen.screens.firstObject;
  if (first == nil || view.window == nil) return std::nullopt;
  const NSRect place = [view.window convertRectToScreen:[view convertRect:view.bounds toView:nil]];
  return Rect{place.origin.x, NSMaxY(first.frame) - NSMaxY(place), place.size.width, place.size.height};
}

}  // namespace
}  // namespace nimbo

/// The target of a button and of its menu's entries.
@interface NimboStatusTarget : NSObject <NSMenuDelegate>
@end

@implementation NimboStatusTarget {
 @public
  NSStatusItem* item;
  nimbo::StatusItemHandlers handlers;
  std::vector<std::function<void()>> actions;
}

- (void)clicked:(NSStatusBarButton*)button {
  NSEvent* const event = NSApp.currentEvent;
  const bool alternate = (event.modifierFlags & NSEventModifierFlagOption) != 0;
  const bool secondary =
      event.type == NSEventTypeRightMouseUp || (event.modifierFlags & NSEventModifierFlagControl) != 0;
  if (secondary && !alternate) return [self openMenu];
  handlers.clicked({alternate, nimbo::placeOf(button)});
}

- (void)watchPlace {
  NSWindow* const window = item.button.window;
  if (window == nil) return;
  for (NSNotificationName const change in
       @[ NSWindowDidMoveNotification, NSWindowDidResizeNotification, NSWindowDidChangeScreenNotification ]) {
    [NSNotificationCenter.defaultCenter addObserver:self selector:@selector(moved:) name:change object:window];
  }
  [self moved:nil];
}

- (void)moved:(NSNotification*)notification {
  (void)notification;
  if (const auto place = nimbo::placeOf(item.button)) handlers.moved(*place);
}

// A button with a menu opens it with every click, so it has one only meanwhile.
- (void)openMenu {
  const nimbo::StatusMenu content = handlers.menuWillOpen();
  NSMenu* const menu = [[NSMenu alloc] initWithTitle:nimbo::nsText(content.title)];
  menu.autoenablesItems = NO;
  menu.delegate = self;
  actions.clear();
  for (const nimbo::MenuEntry& entry : content.entries) {
    if (entry.kind == nimbo::MenuEntry::Kind::separator) {
      [menu addItem:[NSMenuItem separatorItem]];
      continue;
    }
    NSMenuItem* const line = [[NSMenuItem alloc] initWithTitle:nimbo::nsText(entry.title)
                                                        action:@selector(chosen:)
                                                 keyEquivalent:nimbo::nsText(entry.keyEquivalent)];
    line.target = self;
    line.enabled = entry.enabled;
    line.tag = static_cast<NSInteger>(actions.size());
    actions.push_back(entry.action);
    [menu addItem:line];
  }
  item.menu = menu;
  [item.button performClick:nil];
}

- (void)menuDidClose:(NSMenu*)menu {
  (void)menu;
  item.menu = nil;
  handlers.menuDidClose();
}

// May take the item away, and this object with it.
- (void)chosen:(NSMenuItem*)line {
  const auto action = actions.at(static_cast<std::size_t>(line.tag));
  action();
}

@end

namespace nimbo {
namespace {

class NsStatusItem final : public StatusItem {
 public:
  NsStatusItem(const StatusItemName& name, const StatusItemContent& content, StatusItemHandlers handlers)
      : item_([NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength]),
        target_([[NimboStatusTarget alloc] init]) {
    target_->item = item_;
    target_->handlers = std::move(handlers);
    item_.autosaveName = nsText(name.identifier);
    item_.button.target = target_;
    item_.button.action = @selector(clicked:);
    [item_.button sendActionOn:static_cast<NSEventMask>(NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp)];
    show(content);
    // The bar gives it a place with the next turn.
    NimboStatusTarget* const target = target_;
    [NSOperationQueue.mainQueue addOperationWithBlock:^{
      [target watchPlace];
    }];
  }
  NsStatusItem(const NsStatusItem&) = delete;
  NsStatusItem& operator=(const NsStatusItem&) = delete;
  ~NsStatusItem() override {
    item_.button.target = nil;
    [NSNotificationCenter.defaultCenter removeObserver:target_];
    target_->item = nil;
    [NSStatusBar.systemStatusBar removeStatusItem:item_];
  }

  void setContent(const StatusItemContent& content) override {
    if (content != content_) show(content);
  }

  void setHighlighted(bool highlighted) override {
    // After the click that may have led here: its button ends with what it was before.
    NSStatusItem* const item = item_;
    [NSOperationQueue.mainQueue addOperationWithBlock:^{
      [item.button highlight:highlighted];
    }];
  }

 private:
  void show(const StatusItemContent& content) {
    NSStatusBarButton* const button = item_.button;
    button.title = nsText(content.title.value_or(""));
    button.image = nsImage(content.image);
    button.imagePosition = content.title.value_or("").empty() ? NSImageOnly : NSImageLeading;
    button.toolTip = nsText(content.toolTip);
    [button setAccessibilityLabel:nsText(content.accessibleName)];
    content_ = content;
  }

  NSStatusItem* const item_;
  NimboStatusTarget* const target_;
  StatusItemContent content_;
};

}  // namespace

std::unique_ptr<StatusItem> NsStatusBar::makeItem(StatusItemName name, StatusItemContent content,
                                                  StatusItemHandlers handlers) {
  return std::make_unique<NsStatusItem>(name, content, std::move(handlers));
}

}  // namespace nimbo
