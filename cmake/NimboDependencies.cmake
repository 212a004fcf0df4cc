# SPDX-License-Identifier: MIT
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(tl-expected REQUIRED)
find_path(BOOST_PFR_INCLUDE_DIR boost/pfr.hpp REQUIRED)
find_package(Threads REQUIRED)
if(NIMBO_WINDOWS)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(systemd REQUIRED IMPORTED_TARGET libsystemd)
  pkg_check_modules(xcb REQUIRED IMPORTED_TARGET xcb)
endif()
# Time zones; the library brings no CMake or pkg-config file of its own.
find_path(CCTZ_INCLUDE_DIR cctz/time_zone.h REQUIRED)
find_library(CCTZ_LIBRARY cctz REQUIRED)
add_library(cctz::cctz UNKNOWN IMPORTED)
set_target_properties(cctz::cctz PROPERTIES
  IMPORTED_LOCATION ${CCTZ_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${CCTZ_INCLUDE_DIR})
if(APPLE)
  target_link_libraries(cctz::cctz INTERFACE "-framework CoreFoundation")  # the system's own zone
endif()
