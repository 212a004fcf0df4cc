// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/debian_system.h"

#include <features.h>
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

namespace nimbo {

// dpkg-architecture's cputable and ostable.
std::string debianArchitecture() {
#if defined(__x86_64__) && !defined(__ILP32__)
  return "amd64";
#elif defined(__i386__)
  return "i386";
#elif defined(__aarch64__) && !defined(__ILP32__)
  return "arm64";
#elif defined(__arm__) && defined(__ARM_PCS_VFP)
  return "armhf";
#elif defined(__riscv) && __riscv_xlen == 64
  return "riscv64";
#elif defined(__powerpc64__) && defined(__LITTLE_ENDIAN__)
  return "ppc64el";
#elif defined(__s390x__)
  return "s390x";
#elif defined(__loongarch64)
  return "loong64";
#else
  return {};
#endif
}

std::string systemVersion() {
#ifdef __GLIBC__
  return gnu_get_libc_version();
#else
  return {};
#endif
}

}  // namespace nimbo
