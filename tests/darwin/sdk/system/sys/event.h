// SPDX-License-Identifier: MIT
#pragma once

#include <stdint.h>
#include <time.h>

#define EVFILT_PROC (-5)
#define EV_ADD 0x0001
#define EV_ONESHOT 0x0010
#define NOTE_EXIT 0x80000000

#pragma pack(4)
struct kevent {
  uintptr_t ident;
  int16_t filter;
  uint16_t flags;
  uint32_t fflags;
  intptr_t data;
  void* udata;
};
#pragma pack()

extern "C" {
int kqueue(void);
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events, int eventCount,
           const struct timespec* timeout);
}
