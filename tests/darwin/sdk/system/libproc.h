// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>
#include <sys/resource.h>
#include <sys/types.h>

extern "C" {
int proc_listallpids(void* buffer, int bytes);
int proc_pid_rusage(int pid, int flavor, rusage_info_t* buffer);
int proc_name(int pid, void* buffer, uint32_t bytes);
}
