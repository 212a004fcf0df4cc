// SPDX-License-Identifier: MIT
#include "platform/linux/http/curl/secret_memory.h"

#include <string.h>
#include <sys/mman.h>

#include <algorithm>
#include <memory_resource>
#include <mutex>
#include <new>

namespace nimbo::secret_memory {
namespace {

/// Memory straight from the kernel.
class UndumpedPages final : public std::pmr::memory_resource {
  void* do_allocate(std::size_t bytes, std::size_t /*alignment*/) override {
    void* const pages = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    ::madvise(pages, bytes, MADV_DONTDUMP);
    return pages;
  }
  void do_deallocate(void* pages, std::size_t bytes, std::size_t /*alignment*/) override { ::munmap(pages, bytes); }
  [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
};

/// What stands before each block.
struct alignas(std::max_align_t) Prefix {
  std::size_t bytes;  ///< of the block without this
};

class SecretHeap {
 public:
  void* allocate(std::size_t bytes) {
    if (bytes > SIZE_MAX / 2) return nullptr;
    const std::scoped_lock lock(mutex_);
    try {
      return new (pool_.allocate(blockSize(bytes))) Prefix{bytes} + 1;
    } catch (const std::bad_alloc&) {
      return nullptr;
    }
  }

  void release(void* memory) {
    const std::size_t bytes = sizeOf(memory);
    ::explicit_bzero(memory, bytes);
    const std::scoped_lock lock(mutex_);
    pool_.deallocate(static_cast<Prefix*>(memory) - 1, blockSize(bytes));
  }

  static std::size_t sizeOf(void* memory) { return (static_cast<Prefix*>(memory) - 1)->bytes; }

 private:
  // Whole multiples, because libstdc++'s pools align to the size only, whatever is asked for.
  static std::size_t blockSize(std::size_t bytes) {
    return (sizeof(Prefix) + bytes + alignof(Prefix) - 1) / alignof(Prefix) * alignof(Prefix);
  }

  UndumpedPages pages_;
  std::mutex mutex_;
  // Larger blocks, such as receive buffers, come from the kernel and go back there.
  std::pmr::unsynchronized_pool_resource pool_{{.max_blocks_per_chunk = 16, .largest_required_pool_block = 2048},
                                               &pages_};  // guarded by mutex_
};

// Never destroyed: threads that nobody waits for may still give something back while the program ends.
SecretHeap& heap() {
  static auto* const kHeap = new SecretHeap;
  return *kHeap;
}

}  // namespace

void* allocate(std::size_t bytes) { return heap().allocate(bytes); }

void* allocateZeroed(std::size_t count, std::size_t bytes) {
  std::size_t product = 0;
  if (__builtin_mul_overflow(count, bytes, &product)) return nullptr;
  void* const memory = heap().allocate(product);
  return memory == nullptr ? nullptr : ::memset(memory, 0, product);
}

void* resize(void* memory, std::size_t bytes) {
  void* const moved = heap().allocate(bytes);
  if (moved == nullptr || memory == nullptr) return moved;
  ::memcpy(moved, memory, std::min(bytes, SecretHeap::sizeOf(memory)));
  heap().release(memory);
  return moved;
}

char* duplicate(const char* text) {
  const std::size_t bytes = ::strlen(text) + 1;
  void* const copy = heap().allocate(bytes);
  return copy == nullptr ? nullptr : static_cast<char*>(::memcpy(copy, text, bytes));
}

void release(void* memory) {
  if (memory != nullptr) heap().release(memory);
}

}  // namespace nimbo::secret_memory
