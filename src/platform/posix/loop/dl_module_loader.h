// SPDX-License-Identifier: MIT
#pragma once

#include <dlfcn.h>

#include <string>
#include <utility>

#include "platform/bundle.h"

namespace nimbo {

/// Modules as shared objects in one folder, loaded with dlopen.
class DlModuleLoader final : public ModuleLoader {
 public:
  explicit DlModuleLoader(std::string folder) : folder_(std::move(folder)) {}

  [[nodiscard]] Result<void*, ModuleError> symbol(const std::string& module, const char* symbol) override {
    const std::string path = folder_ + "/" + module + ".so";
    // Never closed: objects made inside the module live until the process ends.
    void* const handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const address = handle != nullptr ? ::dlsym(handle, symbol) : nullptr;
    if (address != nullptr) return address;
    const char* const reason = ::dlerror();
    return tl::unexpected(ModuleError{reason != nullptr ? reason : path + ": no such symbol"});
  }

 private:
  const std::string folder_;
};

}  // namespace nimbo
