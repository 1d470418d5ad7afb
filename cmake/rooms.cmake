# SPDX-License-Identifier: GPL-3.0-or-later
# A room is a folder with a library of its own. It sees the rooms that it names, and those that they see; the check
# `layers` holds every include against these lists.

# How all code is built: warnings, sanitizers, one root for includes.
add_library(velmora_code INTERFACE)
target_include_directories(velmora_code INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
target_compile_options(velmora_code INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual $<$<BOOL:${VELMORA_WERROR}>:-Werror>
  "$<$<CXX_COMPILER_ID:Clang>:-Wthread-safety;-Werror=thread-safety>")
target_compile_definitions(velmora_code INTERFACE $<$<CONFIG:RelWithDebInfo>:_GLIBCXX_ASSERTIONS>)
if(VELMORA_SANITIZE)
  target_compile_options(velmora_code INTERFACE -fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer
                                                -fno-sanitize-recover=all)
  target_link_options(velmora_code INTERFACE -fsanitize=${VELMORA_SANITIZE})
endif()

# What code of the program itself is held to beside that; the tests' own is not.
add_library(velmora_careful INTERFACE)
target_compile_options(velmora_careful INTERFACE -Wconversion -Wsign-conversion -Wold-style-cast -Wextra-semi)
if(NOT VELMORA_SANITIZE)
  target_compile_options(velmora_careful INTERFACE
    $<$<CONFIG:RelWithDebInfo>:-U_FORTIFY_SOURCE> $<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
endif()

# The library `velmora_NAME` of the sources in this folder. SEES: rooms. LINKS: libraries from outside.
function(velmora_room name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SEES;LINKS")
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  add_library(velmora_${name} STATIC ${sources})
  list(TRANSFORM arg_SEES PREPEND velmora_)
  target_link_libraries(velmora_${name} PUBLIC velmora_code ${arg_SEES} PRIVATE velmora_careful ${arg_LINKS})
endfunction()
