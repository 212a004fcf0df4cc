// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_ax.h"

#include <gtest/gtest.h>

#include <utility>

using namespace nimbo::fake;

struct __AXUIElement : Object {
  explicit __AXUIElement(const Ax::Node* shown) : Object(kElement), node(shown) {}
  const Ax::Node* const node;  // null for the application itself
  mutable float timeout = 0;
};

namespace {

Ax* theAx = nullptr;

AXError call(AXUIElementRef element, const std::string& attribute) {
  constexpr float kDefaultTimeout = 6;
  ++theAx->calls;
  if (!theAx->isTrusted) return kAXErrorAPIDisabled;
  if (theAx->isGone) return kAXErrorInvalidUIElement;
  if (theAx->hangs) {
    theAx->clock.advance(std::chrono::duration<double>(element->timeout > 0 ? element->timeout : kDefaultTimeout));
    return kAXErrorCannotComplete;
  }
  const auto failure = theAx->failures.find(attribute);
  return failure == theAx->failures.end() ? kAXErrorSuccess : failure->second;
}

/// New references to the elements, as each call gives.
Held elementsOf(const std::vector<Ax::Node*>& nodes) {
  std::vector<Held> elements;
  for (const auto* const node : nodes) elements.push_back(owned(new __AXUIElement(node)));
  return array(elements);
}

}  // namespace

namespace nimbo::fake {

Ax::Ax(FakeClock& time) : clock(time) { EXPECT_EQ(std::exchange(theAx, this), nullptr); }
Ax::~Ax() { theAx = nullptr; }

}  // namespace nimbo::fake

extern "C" {

static const __CFString kPrompt("AXTrustedCheckOptionPrompt", Object::Count::no);
const CFStringRef kAXTrustedCheckOptionPrompt = &kPrompt;
Boolean AXIsProcessTrusted() { return theAx->isTrusted; }
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
  const bool isAsked = CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt) == kCFBooleanTrue;
  if (isAsked && !theAx->isTrusted) ++theAx->timesPrompted;
  return theAx->isTrusted;
}

CFTypeID AXUIElementGetTypeID() { return kElement; }
AXUIElementRef AXUIElementCreateApplication(pid_t process) {
  EXPECT_EQ(process, Ax::kProcess);
  return new __AXUIElement(nullptr);
}
AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float seconds) {
  element->timeout = seconds;
  return kAXErrorSuccess;
}
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value) {
  const AXError error = call(element, utf8(attribute));
  if (error != kAXErrorSuccess) return error;
  if (element->node != nullptr || utf8(attribute) != "AXManualAccessibility") return kAXErrorAttributeUnsupported;
  theAx->showsContent = theAx->showsContent || value == kCFBooleanTrue;
  return kAXErrorSuccess;
}
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
  const std::string name = utf8(attribute);
  const AXError error = call(element, name);
  if (error != kAXErrorSuccess) return error;
  Held copied;
  if (element->node == nullptr) {
    if (name == "AXWindows") copied = elementsOf(theAx->windows);
  } else if (const auto found = element->node->attributes.find(name); found != element->node->attributes.end()) {
    copied = found->second;
  } else if (name == "AXChildren" && theAx->showsContent) {
    copied = elementsOf(element->node->children);
  }
  if (copied.get() == nullptr) return kAXErrorNoValue;
  *value = CFRetain(copied.get());
  return kAXErrorSuccess;
}

}  // extern "C"
