// SPDX-License-Identifier: MIT
#include "platform/darwin/settings/cf_bundle_info.h"

#include "platform/darwin/core/cf_object.h"

namespace nimbo {

BundleInfo readBundleInfo() {
  auto* const bundle = CFBundleGetMainBundle();
  if (bundle == nullptr) return {};
  return bundleInfoOf([bundle](const char* key) {
    return textOf(CFBundleGetValueForInfoDictionaryKey(bundle, makeCfString(key).get()));
  });
}

}  // namespace nimbo
