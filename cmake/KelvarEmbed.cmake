# Compiles data files of res/ into the program: kelvar_embed_files(<output> <files...>) writes
# <output>, an include file of {"NAME", R"(text)"} rows, one per file, at configure time; a
# change of any file configures again.
# SPDX-License-Identifier: GPL-3.0-or-later
function(kelvar_embed_files output)
    set(rows "// Generated from res/ by kelvar_embed_files: do not edit.\n")
    foreach(file ${ARGN})
        get_filename_component(name ${file} NAME)
        file(READ ${file} text)
        string(APPEND rows "{\"${name}\", R\"KELVAR_EMBED(${text})KELVAR_EMBED\"},\n")
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    endforeach()
    # Written only when it changes, so an unchanged configure rebuilds nothing.
    set(old "")
    if(EXISTS ${output})
        file(READ ${output} old)
    endif()
    if(NOT old STREQUAL rows)
        file(WRITE ${output} "${rows}")
    endif()
endfunction()
