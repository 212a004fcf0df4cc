// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/bundle.h"

namespace nimbo {

/// Modules as shared objects in one folder, loaded with dlopen.
class DlModuleLoader final : public ModuleLoader {
 public:
  explicit DlModuleLoader(std::string folder);
  [[nodiscard]] Result<void*, ModuleError> symbol(const std::string& module, const char* symbol) override;

 private:
  const std::string folder_;
};

}  // namespace nimbo
