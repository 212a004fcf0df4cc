// SPDX-License-Identifier: MIT
extern "C" __attribute__((visibility("default"))) int answer();
extern "C" int answer() { return 42; }
