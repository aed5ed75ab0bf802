# The parts of the Wayland protocol beyond the core that the program speaks, made from their descriptions.
pkg_check_modules(WAYLAND REQUIRED IMPORTED_TARGET wayland-client)
pkg_get_variable(wayland_scanner wayland-scanner wayland_scanner)
pkg_get_variable(wayland_protocols wayland-protocols pkgdatadir)
find_package(PlasmaWaylandProtocols REQUIRED)

add_library(tavrin_wayland_protocols STATIC)
target_include_directories(tavrin_wayland_protocols SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/wayland)
target_link_libraries(tavrin_wayland_protocols PUBLIC PkgConfig::WAYLAND)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/wayland)
foreach(description ${wayland_protocols}/unstable/xdg-output/xdg-output-unstable-v1.xml
                    ${PLASMA_WAYLAND_PROTOCOLS_DIR}/kde-output-order-v1.xml)
    get_filename_component(name ${description} NAME_WE)
    set(base ${CMAKE_BINARY_DIR}/wayland/${name})
    foreach(kind client-header private-code)
        string(REPLACE "client-header" "${base}-client-protocol.h" output ${kind})
        string(REPLACE "private-code" "${base}-protocol.c" output ${output})
        add_custom_command(OUTPUT ${output} DEPENDS ${description} VERBATIM
            COMMAND ${wayland_scanner} ${kind} ${description} ${output})
        target_sources(tavrin_wayland_protocols PRIVATE ${output})
    endforeach()
endforeach()
