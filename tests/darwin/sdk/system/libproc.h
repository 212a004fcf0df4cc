// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>
#include <sys/resource.h>
#include <sys/types.h>

#define PROC_ALL_PIDS 1

extern "C" {
int proc_listallpids(void* buffer, int bytes);
int proc_listpidspath(uint32_t type, uint32_t typeInfo, const char* path, uint32_t flags, void* buffer, int bytes);
int proc_pid_rusage(int pid, int flavor, rusage_info_t* buffer);
int proc_name(int pid, void* buffer, uint32_t bytes);
}
