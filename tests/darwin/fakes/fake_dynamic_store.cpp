// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_dynamic_store.h"

#include <SystemConfiguration/SystemConfiguration.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "darwin/fakes/fake_core_foundation.h"

using namespace nimbo::fake;

namespace {

DynamicStore* theStore = nullptr;

}  // namespace

/// A connection, which its run-loop source holds as well.
struct __SCDynamicStore : Object {
  __SCDynamicStore(SCDynamicStoreCallBack called, void* given) : Object(kRunLoopObject), callout(called), info(given) {
    theStore->connections.push_back(this);
  }
  ~__SCDynamicStore() override {
    if (theStore != nullptr) std::erase(theStore->connections, this);
  }

  const SCDynamicStoreCallBack callout;
  void* const info;
  std::set<std::string> watched;
  std::vector<Held> changed;
  Held source;
};

namespace nimbo::fake {

DynamicStore::DynamicStore() { EXPECT_EQ(std::exchange(theStore, this), nullptr); }
DynamicStore::~DynamicStore() { theStore = nullptr; }

void DynamicStore::set(const std::string& key, bool hasValue) {
  if (hasValue) {
    values.insert(key);
  } else {
    values.erase(key);
  }
  for (auto* const connection : connections) {
    if (!connection->watched.contains(key) || connection->source.get() == nullptr) continue;
    connection->changed.push_back(text(key));
    CFRunLoopSourceSignal(static_cast<CFRunLoopSourceRef>(const_cast<void*>(connection->source.get())));
    CFRunLoopWakeUp(CFRunLoopGetMain());
  }
}

}  // namespace nimbo::fake

extern "C" {

SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef /*allocator*/, CFStringRef /*name*/,
                                       SCDynamicStoreCallBack callout, SCDynamicStoreContext* context) {
  return theStore->connects ? new __SCDynamicStore(callout, context->info) : nullptr;
}
Boolean SCDynamicStoreSetNotificationKeys(SCDynamicStoreRef store, CFArrayRef keys, CFArrayRef patterns) {
  EXPECT_EQ(patterns, nullptr);
  if (!theStore->watches) return false;
  for (const auto& key : keys->values) const_cast<__SCDynamicStore*>(store)->watched.insert(utf8(key.get()));
  return true;
}
CFRunLoopSourceRef SCDynamicStoreCreateRunLoopSource(CFAllocatorRef /*allocator*/, SCDynamicStoreRef store,
                                                     CFIndex /*order*/) {
  if (!theStore->notifies) return nullptr;
  auto* const connection = const_cast<__SCDynamicStore*>(store);
  CFRunLoopSourceContext context{};
  context.info = connection;
  context.perform = [](void* info) {
    auto* const told = static_cast<__SCDynamicStore*>(info);
    const Held changed = array(std::exchange(told->changed, {}));
    told->callout(told, static_cast<CFArrayRef>(changed.get()), told->info);
  };
  const CFRunLoopSourceRef source = CFRunLoopSourceCreate(nullptr, 0, &context);
  connection->source = Held(source);
  return source;
}
CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef /*store*/, CFStringRef key) {
  return theStore->values.contains(key->utf8) ? CFRetain(dictionary({}).get()) : nullptr;
}

}  // extern "C"
