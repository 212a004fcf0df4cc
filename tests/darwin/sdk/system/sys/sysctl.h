// SPDX-License-Identifier: MIT
#pragma once

#include <stddef.h>
#include <stdint.h>

struct xsw_usage {
  uint64_t xsu_total;
  uint64_t xsu_avail;
  uint64_t xsu_used;
  uint32_t xsu_pagesize;
  unsigned int xsu_encrypted;
};

extern "C" int sysctlbyname(const char* name, void* old, size_t* oldSize, void* replacement, size_t replacementSize);
