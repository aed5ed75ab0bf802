# The parts of the Wayland protocol beyond the core that the program speaks, made from their descriptions.
pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(wayland_scanner wayland-scanner wayland_scanner)
pkg_get_variable(wayland_protocols wayland-protocols pkgdatadir)
find_package(PlasmaWaylandProtocols REQUIRED)

file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/wayland)
function(tavrin_wayland_code library)
    add_library(${library} STATIC)
    target_include_directories(${library} SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/wayland)
    target_link_libraries(${library} PUBLIC PkgConfig::WAYLAND)
    foreach(description ${ARGN})
        get_filename_component(name ${description} NAME_WE)
        set(base ${CMAKE_BINARY_DIR}/wayland/${name})
        foreach(kind client-header private-code)
            string(REPLACE "client-header" "${base}-client-protocol.h" output ${kind})
            string(REPLACE "private-code" "${base}-protocol.c" output ${output})
            add_custom_command(OUTPUT ${output} DEPENDS ${description} VERBATIM
                COMMAND ${wayland_scanner} ${kind} ${description} ${output})
            target_sources(${library} PRIVATE ${output})
        endforeach()
    endforeach()
endfunction()
tavrin_wayland_code(tavrin_wayland_protocols
    ${wayland_protocols}/unstable/xdg-output/xdg-output-unstable-v1.xml
    ${PLASMA_WAYLAND_PROTOCOLS_DIR}/kde-output-order-v1.xml)
