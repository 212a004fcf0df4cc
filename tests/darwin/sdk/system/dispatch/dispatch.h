// SPDX-License-Identifier: MIT
// Declarations of what is used of libdispatch, after its public documentation.
#pragma once

#include <stdint.h>
#include <time.h>

extern "C" {

typedef struct dispatch_object_s {
} * dispatch_object_t;
typedef struct dispatch_queue_s : public dispatch_object_s{} * dispatch_queue_t;
typedef struct dispatch_source_s : public dispatch_object_s{} * dispatch_source_t;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;
typedef uint64_t dispatch_time_t;
typedef void (*dispatch_function_t)(void*);

#define NSEC_PER_MSEC 1000000ull
#define DISPATCH_TIME_FOREVER (~0ull)
extern const struct dispatch_source_type_s _dispatch_source_type_timer;
#define DISPATCH_SOURCE_TYPE_TIMER (&_dispatch_source_type_timer)
extern const struct dispatch_source_type_s _dispatch_source_type_signal;
/// Of a signal that does nothing else: the handle is its number.
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)

dispatch_queue_t dispatch_get_main_queue(void);
/// A time by the wall clock.
dispatch_time_t dispatch_walltime(const struct timespec* when, int64_t delta);
/// Made suspended. `dispatch_resume` starts it, and it must not be released before.
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t mask,
                                         dispatch_queue_t queue);
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval, uint64_t leeway);
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler);
void dispatch_set_context(dispatch_object_t object, void* context);
void dispatch_resume(dispatch_object_t object);
/// No event handler begins afterwards, if called on the source's own queue.
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_release(dispatch_object_t object);

}  // extern "C"
