// SPDX-License-Identifier: MIT
#pragma once

#include_next <pthread.h>

typedef unsigned int qos_class_t;
#define QOS_CLASS_UTILITY 0x11

// The C library here has one of that name that takes a thread, too.
extern "C" int pthread_setname_of_this(const char* name);
#define pthread_setname_np(name) pthread_setname_of_this(name)
extern "C" int pthread_set_qos_class_self_np(qos_class_t qos, int relativePriority);
