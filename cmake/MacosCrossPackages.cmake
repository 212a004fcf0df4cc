# SPDX-License-Identifier: MIT
# What scripts/cross-macos has instead of installed libraries: the headers of those that are nothing else, or
# can be.
foreach(target fmt::fmt nlohmann_json::nlohmann_json tl::expected Threads::Threads)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${NIMBO_CROSS_TOOLS}/include)
endforeach()
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)

macro(nimbo_cross_package method package)
  if("${package}" STREQUAL "GTest")
    # Prints times by the library's own formatting, which wants a newer system than the program does.
    add_compile_options(-U_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=0)
    add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  endif()
  set(${package}_FOUND TRUE)
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER nimbo_cross_package SUPPORTED_METHODS FIND_PACKAGE)
