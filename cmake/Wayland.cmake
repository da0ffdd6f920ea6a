# tavi_wayland_protocol(<target> <name> <xml>): makes <name>-client-protocol.h and its code of a
# protocol's description; a source of the target includes both, so that no C compiler is needed.
find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)

function(tavi_wayland_protocol target name xml)
  set(header ${CMAKE_CURRENT_BINARY_DIR}/wayland/${name}-client-protocol.h)
  set(code ${CMAKE_CURRENT_BINARY_DIR}/wayland/${name}-protocol.c)
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/wayland)
  add_custom_command(OUTPUT ${header} DEPENDS ${xml} VERBATIM
    COMMAND ${WAYLAND_SCANNER} client-header ${xml} ${header})
  add_custom_command(OUTPUT ${code} DEPENDS ${xml} VERBATIM
    COMMAND ${WAYLAND_SCANNER} private-code ${xml} ${code})
  set_source_files_properties(${code} PROPERTIES HEADER_FILE_ONLY ON)
  target_sources(${target} PRIVATE ${header} ${code})
  target_include_directories(${target} SYSTEM PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/wayland)
endfunction()
