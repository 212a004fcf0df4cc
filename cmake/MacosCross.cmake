# SPDX-License-Identifier: MIT
# The toolchain of scripts/cross-macos, which gives NIMBO_CROSS_ARCHITECTURE (aarch64 or x86_64) and, in
# NIMBO_CROSS_TOOLS, the folder of a clang that has the system's own headers, and of headers that are the
# same on every system. Compiles and links for macOS on any other system; nothing of that is run.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${NIMBO_CROSS_ARCHITECTURE})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES NIMBO_CROSS_ARCHITECTURE NIMBO_CROSS_TOOLS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

foreach(language C CXX OBJC OBJCXX)
  set(suffix c++)
  if(language MATCHES "C$")
    set(suffix cc)
  endif()
  set(CMAKE_${language}_COMPILER ${NIMBO_CROSS_TOOLS}/bin/${NIMBO_CROSS_ARCHITECTURE}-${suffix})
endforeach()
set(CMAKE_AR ${NIMBO_CROSS_TOOLS}/bin/ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${NIMBO_CROSS_TOOLS}/bin/ranlib CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL true CACHE FILEPATH "")
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")

# What the library of the oldest system lacks is an error. Frameworks are what tests/darwin/sdk declares.
set(CMAKE_CXX_FLAGS_INIT "-U_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=1")
string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${CMAKE_CURRENT_LIST_DIR}/../tests/darwin/sdk/frameworks")
set(CMAKE_OBJCXX_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")
foreach(kind EXE SHARED)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-F${CMAKE_CURRENT_LIST_DIR}/../tests/darwin/sdk/stubs -L${NIMBO_CROSS_TOOLS}/lib")
endforeach()

# This system's libraries are none of that one's: what is found are headers, and stubs of ours.
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_ROOT_PATH ${NIMBO_CROSS_TOOLS})
set(CMAKE_PROJECT_TOP_LEVEL_INCLUDES ${CMAKE_CURRENT_LIST_DIR}/MacosCrossPackages.cmake)
