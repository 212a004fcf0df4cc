// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// The C library's allocation functions for a library that copies secrets around: each block has pages
/// of its own, which are left out of core dumps and go back to the kernel. Where there is no memory they throw, as all
/// else here does: the library itself releases things twice then. Any thread.
namespace nimbo::secret_memory {

[[nodiscard]] void* allocate(std::size_t bytes);
[[nodiscard]] void* allocateZeroed(std::size_t count, std::size_t bytes);
[[nodiscard]] void* resize(void* memory, std::size_t bytes);
[[nodiscard]] char* duplicate(const char* text);
void release(void* memory);

}  // namespace nimbo::secret_memory
