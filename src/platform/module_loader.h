// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/result.h"

namespace nimbo {

struct ModuleError {
  std::string message;  ///< the system's own words
};

/// Loads parts of the program that most runs never need. Main thread only.
class ModuleLoader {
 public:
  virtual ~ModuleLoader() = default;

  /// The address of `symbol` in `module` ("nimbo-ui"), which stays loaded for the rest of the run.
  [[nodiscard]] virtual Result<void*, ModuleError> symbol(const std::string& module, const char* symbol) = 0;
};

}  // namespace nimbo
