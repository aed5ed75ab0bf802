add_library(tavrin_compiler_settings INTERFACE)
target_include_directories(tavrin_compiler_settings INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(tavrin_compiler_settings INTERFACE
    -Wall -Wextra -Wpedantic $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> -Wnon-virtual-dtor -Woverloaded-virtual)
# Designated initialisers leave members at their defaults on purpose.
target_compile_options(tavrin_compiler_settings INTERFACE -Wno-missing-field-initializers)
if(TAVRIN_WERROR)
    target_compile_options(tavrin_compiler_settings INTERFACE -Werror)
endif()
if(TAVRIN_SANITIZE)
    target_compile_options(tavrin_compiler_settings INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tavrin_compiler_settings INTERFACE -fsanitize=address,undefined)
endif()
if(TAVRIN_FUZZ)
    target_compile_options(tavrin_compiler_settings INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
        -fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/uncounted.txt)
    target_link_options(tavrin_compiler_settings INTERFACE -fsanitize=address,undefined)
endif()

# One library per folder: every source in the folder, and the folders and libraries it may use.
function(tavrin_library name)
    cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    if(NOT sources MATCHES "\\.cpp")
        return()
    endif()
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC tavrin_compiler_settings ${ARG_LINKS})
endfunction()
