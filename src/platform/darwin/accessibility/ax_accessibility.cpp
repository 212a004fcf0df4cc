// SPDX-License-Identifier: MIT
#include "platform/darwin/accessibility/ax_accessibility.h"

#include <ApplicationServices/ApplicationServices.h>

#include "platform/darwin/core/cf_object.h"

namespace nimbo {
namespace {

using Element = CfObject<AXUIElementRef>;

/// Null when there is none, or when the application does not tell in time.
CfObject<CFTypeRef> copyAttribute(const Element& element, const char* name) {
  CFTypeRef value = nullptr;
  const AXError error = AXUIElementCopyAttributeValue(element.get(), makeCfString(name).get(), &value);
  return CfObject<CFTypeRef>(error == kAXErrorSuccess ? value : nullptr);
}

std::vector<std::unique_ptr<AccessibleElement>> copyElements(const Element& element, const char* name, float timeout,
                                                             std::size_t limit);

class AxElement final : public AccessibleElement {
 public:
  // The system keeps the time-out with each reference to an element.
  AxElement(Element element, float timeout) : element_(std::move(element)), timeout_(timeout) {
    AXUIElementSetMessagingTimeout(element_.get(), timeout_);
  }

  [[nodiscard]] std::optional<std::string> title() override { return text("AXTitle"); }
  [[nodiscard]] std::optional<std::string> description() override { return text("AXDescription"); }
  [[nodiscard]] std::optional<std::string> value() override { return text("AXValue"); }
  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> children(std::size_t limit) override {
    return copyElements(element_, "AXChildren", timeout_, limit);
  }

 private:
  [[nodiscard]] std::optional<std::string> text(const char* name) const {
    return textOf(copyAttribute(element_, name).get());
  }

  const Element element_;
  const float timeout_;  // seconds
};

std::vector<std::unique_ptr<AccessibleElement>> copyElements(const Element& element, const char* name, float timeout,
                                                             std::size_t limit) {
  std::vector<std::unique_ptr<AccessibleElement>> elements;
  const auto value = copyAttribute(element, name);
  if (!value || CFGetTypeID(value.get()) != CFArrayGetTypeID()) return elements;
  const auto array = static_cast<CFArrayRef>(value.get());
  for (CFIndex index = 0; index < CFArrayGetCount(array) && elements.size() < limit; ++index) {
    const CFTypeRef entry = CFArrayGetValueAtIndex(array, index);
    if (CFGetTypeID(entry) != AXUIElementGetTypeID()) continue;
    elements.push_back(std::make_unique<AxElement>(retained(static_cast<AXUIElementRef>(entry)), timeout));
  }
  return elements;
}

class AxApplication final : public AccessibleApplication {
 public:
  explicit AxApplication(pid_t process) : element_(AXUIElementCreateApplication(process)) {}

  void setMessagingTimeout(std::chrono::milliseconds limit) override {
    timeout_ = std::chrono::duration<float>(limit).count();
    AXUIElementSetMessagingTimeout(element_.get(), timeout_);
  }
  void exposeContent(const std::stop_token& /*stop*/) override {
    AXUIElementSetAttributeValue(element_.get(), makeCfString("AXManualAccessibility").get(), kCFBooleanTrue);
  }
  [[nodiscard]] std::vector<std::unique_ptr<AccessibleElement>> windows(std::size_t limit) override {
    return copyElements(element_, "AXWindows", timeout_, limit);
  }

 private:
  const Element element_;
  float timeout_ = 0;  // seconds; 0 is the system's own
};

}  // namespace

bool AxAccessibility::isTrusted() { return AXIsProcessTrusted() != 0; }

void AxAccessibility::requestTrust() {
  const CfObject<CFMutableDictionaryRef> options(CFDictionaryCreateMutable(
      kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(options.get(), kAXTrustedCheckOptionPrompt, kCFBooleanTrue);
  AXIsProcessTrustedWithOptions(options.get());
}

std::unique_ptr<AccessibleApplication> AxAccessibility::application(const std::string& bundleIdentifier) {
  const auto process = findProcess_(bundleIdentifier);
  return process ? std::make_unique<AxApplication>(*process) : nullptr;
}

}  // namespace nimbo
