# SPDX-License-Identifier: MIT
# How our own code is compiled; libraries link nimbo_options to get it.
add_library(nimbo_options INTERFACE)
target_include_directories(nimbo_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(nimbo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)

if(NIMBO_SANITIZE)
  target_compile_options(nimbo_options INTERFACE
    -fsanitize=${NIMBO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(nimbo_options INTERFACE -fsanitize=${NIMBO_SANITIZE} -fuse-ld=lld)
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  # Small is what counts: little is computed in the program itself, and the rooms that do say so.
  string(REPLACE "-O3" "-Os" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
  set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
  target_compile_options(nimbo_options INTERFACE
    -D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection -fcf-protection
    -ffunction-sections -fdata-sections)
  # gcc 12's optimizer sees overlapping copies inside std::string's operator+ where there are none
  # (gcc bug 105651).
  target_compile_options(nimbo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  target_link_options(nimbo_options INTERFACE
    -Wl,-z,relro,-z,now -Wl,-z,noexecstack -Wl,--gc-sections -Wl,--as-needed)
endif()
