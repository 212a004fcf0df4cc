# SPDX-License-Identifier: MIT
pkg_check_modules(wayland_client REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)
pkg_get_variable(WAYLAND_PROTOCOLS_DIR wayland-protocols pkgdatadir)

# A library of protocols as C, with a header for clients (and one for compositors, which are for tests).
function(nimbo_wayland_protocols name)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}.dir)
  file(MAKE_DIRECTORY ${folder})
  add_library(${name} STATIC)
  foreach(xml ${ARGN})
    get_filename_component(protocol ${xml} NAME_WE)
    set(output ${folder}/${protocol})
    add_custom_command(OUTPUT ${output}.c ${output}-client.h ${output}-server.h DEPENDS ${xml} VERBATIM
      COMMAND ${WAYLAND_SCANNER} private-code ${xml} ${output}.c
      COMMAND ${WAYLAND_SCANNER} client-header ${xml} ${output}-client.h
      COMMAND ${WAYLAND_SCANNER} server-header ${xml} ${output}-server.h)
    target_sources(${name} PRIVATE ${output}.c ${output}-client.h ${output}-server.h)
  endforeach()
  target_include_directories(${name} SYSTEM PUBLIC ${folder})
  target_link_libraries(${name} PUBLIC PkgConfig::wayland_client)
endfunction()
