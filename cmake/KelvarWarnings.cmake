# The warning set every Kelvar target builds with, and the sanitizer switch.
# SPDX-License-Identifier: GPL-3.0-or-later
add_library(kelvar_warnings INTERFACE)
add_library(kelvar::warnings ALIAS kelvar_warnings)
target_compile_options(kelvar_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wnon-virtual-dtor -Wold-style-cast -Wformat=2
    # GCC 12 reports std::string copies at -O3 as overlapping (its bug 105329).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(kelvar_warnings INTERFACE ${CMAKE_SOURCE_DIR})

# CI sets CI=true; a build there treats every warning as an error.
if(KELVAR_WERROR OR DEFINED ENV{CI})
    target_compile_options(kelvar_warnings INTERFACE -Werror)
endif()

if(KELVAR_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

# Declares a core library: kelvar_<name> with the alias kelvar::<name>.
function(kelvar_core_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS" ${ARGN})
    add_library(kelvar_${name} STATIC ${ARG_SOURCES})
    add_library(kelvar::${name} ALIAS kelvar_${name})
    target_sources(kelvar_${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_SOURCE_DIR} FILES ${ARG_HEADERS})
    target_link_libraries(kelvar_${name} PRIVATE kelvar_warnings)
    target_include_directories(kelvar_${name} PUBLIC ${CMAKE_SOURCE_DIR})
endfunction()
