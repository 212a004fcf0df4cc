// SPDX-License-Identifier: MIT
#pragma once

#include_next <spawn.h>

#define POSIX_SPAWN_CLOEXEC_DEFAULT 0x4000

// Which the C library here does not know.
extern "C" int spawnattr_setflags_with_cloexec(posix_spawnattr_t* attributes, short flags);
#define posix_spawnattr_setflags spawnattr_setflags_with_cloexec
