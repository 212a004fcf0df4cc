// SPDX-License-Identifier: MIT
#include "platform/linux/loop/dl_module_loader.h"

#include <dlfcn.h>

#include <utility>

namespace nimbo {

DlModuleLoader::DlModuleLoader(std::string folder) : folder_(std::move(folder)) {}

Result<void*, ModuleError> DlModuleLoader::symbol(const std::string& module, const char* symbol) {
  const std::string path = folder_ + "/" + module + ".so";
  // Never closed: objects made inside the module live until the process ends.
  void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const address = handle != nullptr ? dlsym(handle, symbol) : nullptr;
  if (address == nullptr) {
    const char* const reason = dlerror();
    return tl::unexpected(ModuleError{reason != nullptr ? reason : path + ": no such symbol"});
  }
  return address;
}

}  // namespace nimbo
