// SPDX-License-Identifier: MIT
// Loaded before the C library, counts what a program asks the heap for, in the file that NIMBO_ALLOCATIONS names:
// a 64-bit number that another process reads meanwhile.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using Counter = std::atomic<std::uint64_t>;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming): glibc's names
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

Counter unread{0};
Counter* counter = &unread;

__attribute__((constructor)) void shareCounter() {
  const char* const path = std::getenv("NIMBO_ALLOCATIONS");
  const int file = path ? open(path, O_RDWR | O_CLOEXEC) : -1;
  if (file < 0) return;
  void* const shared = mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  close(file);
  if (shared != MAP_FAILED) counter = static_cast<Counter*>(shared);
  unsetenv("LD_PRELOAD");  // what the program starts is not counted
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) {
  ++*counter;
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  ++*counter;
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  ++*counter;
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  ++*counter;
  return __libc_memalign(alignment, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)
