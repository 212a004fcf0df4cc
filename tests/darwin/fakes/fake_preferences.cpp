// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_preferences.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

using namespace nimbo::fake;

namespace {

Preferences* thePreferences = nullptr;

bool isPropertyList(CFTypeRef value) {
  const auto type = CFGetTypeID(value);
  if (type == kArray) {
    const auto& values = static_cast<CFArrayRef>(value)->values;
    return std::ranges::all_of(values, [](const Held& held) { return isPropertyList(held.get()); });
  }
  if (type == kDictionary) {
    const auto& values = static_cast<CFDictionaryRef>(value)->values;
    return std::ranges::all_of(values, [](const auto& entry) { return isPropertyList(entry.second.second.get()); });
  }
  return type == kString || type == kBoolean || type == kNumber || type == kDate || type == kData;
}

void setValue(CFStringRef application, const std::string& key, CFPropertyListRef value) {
  EXPECT_TRUE(value == nullptr || isPropertyList(value)) << key;
  auto& domain = thePreferences->current[utf8(application)];
  if (value == nullptr) {
    domain.erase(key);
  } else {
    domain.insert_or_assign(key, Held(value));
  }
}

}  // namespace

namespace nimbo::fake {

Preferences::Preferences() { EXPECT_EQ(std::exchange(thePreferences, this), nullptr); }
Preferences::~Preferences() { thePreferences = nullptr; }

}  // namespace nimbo::fake

struct __CFBundle {
  nimbo::fake::Bundle* fake;
};
static __CFBundle theBundle{};

namespace nimbo::fake {

Bundle::Bundle() { EXPECT_EQ(std::exchange(theBundle.fake, this), nullptr); }
Bundle::~Bundle() { theBundle.fake = nullptr; }

}  // namespace nimbo::fake

extern "C" {

CFBundleRef CFBundleGetMainBundle() { return theBundle.fake != nullptr ? &theBundle : nullptr; }
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
  const auto found = bundle->fake->information.find(key->utf8);
  return found == bundle->fake->information.end() ? nullptr : found->second.get();
}

static const __CFString kCurrentUser("kCFPreferencesCurrentUser", Object::Count::no);
static const __CFString kAnyHost("kCFPreferencesAnyHost", Object::Count::no);
const CFStringRef kCFPreferencesCurrentUser = &kCurrentUser;
const CFStringRef kCFPreferencesAnyHost = &kAnyHost;

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application) {
  const auto& domain = thePreferences->current[utf8(application)];
  const auto found = domain.find(utf8(key));
  return found == domain.end() ? nullptr : CFRetain(found->second.get());
}
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application) {
  setValue(application, utf8(key), value);
}
Boolean CFPreferencesSynchronize(CFStringRef application, CFStringRef user, CFStringRef hostName) {
  EXPECT_EQ(user, kCFPreferencesCurrentUser);
  EXPECT_EQ(hostName, kCFPreferencesAnyHost);
  if (thePreferences->failsToWrite) return false;
  const std::string name = utf8(application);
  thePreferences->written[name] = thePreferences->current[name];
  ++thePreferences->timesWritten;
  return true;
}
// Never null: a domain that is not there has no values.
CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef keysToFetch, CFStringRef application, CFStringRef /*user*/,
                                          CFStringRef /*hostName*/) {
  EXPECT_EQ(keysToFetch, nullptr) << "only whole domains are known here";
  return static_cast<CFDictionaryRef>(CFRetain(dictionary(thePreferences->current[utf8(application)]).get()));
}
void CFPreferencesSetMultiple(CFDictionaryRef keysToSet, CFArrayRef keysToRemove, CFStringRef application,
                              CFStringRef /*user*/, CFStringRef /*hostName*/) {
  for (const auto& held : keysToRemove->values) setValue(application, utf8(held.get()), nullptr);
  for (const auto& [key, entry] : keysToSet->values) setValue(application, key, entry.second.get());
}

}  // extern "C"
