// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/secret_memory.h"

#include <string.h>
#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace nimbo::secret_memory {
namespace {

/// What stands before each block.
struct alignas(std::max_align_t) Prefix {
  std::size_t bytes;  ///< of the block without this
};

Prefix* prefixOf(void* memory) { return static_cast<Prefix*>(memory) - 1; }

}  // namespace

// A request takes some seventy blocks, so that even whole pages cost it less than a millisecond.
void* allocate(std::size_t bytes) {
  std::size_t all = 0;
  if (__builtin_add_overflow(bytes, sizeof(Prefix), &all)) return nullptr;
  void* const pages = ::mmap(nullptr, all, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  ::madvise(pages, all, MADV_DONTDUMP);
  return new (pages) Prefix{bytes} + 1;
}

void* allocateZeroed(std::size_t count, std::size_t bytes) {
  std::size_t product = 0;
  return __builtin_mul_overflow(count, bytes, &product) ? nullptr : allocate(product);  // new pages are zeroed
}

void* resize(void* memory, std::size_t bytes) {
  void* const moved = allocate(bytes);
  if (moved == nullptr || memory == nullptr) return moved;
  ::memcpy(moved, memory, std::min(bytes, prefixOf(memory)->bytes));
  release(memory);
  return moved;
}

char* duplicate(const char* text) {
  const std::size_t bytes = ::strlen(text) + 1;
  void* const copy = allocate(bytes);
  return copy == nullptr ? nullptr : static_cast<char*>(::memcpy(copy, text, bytes));
}

void release(void* memory) {
  if (memory != nullptr) ::munmap(prefixOf(memory), sizeof(Prefix) + prefixOf(memory)->bytes);
}

}  // namespace nimbo::secret_memory
