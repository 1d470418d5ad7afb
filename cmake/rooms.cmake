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
  target_sources(velmora_code INTERFACE
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${PROJECT_SOURCE_DIR}/cmake/sanitizer_notes.cpp>)
endif()

# Where the whole program is linked from what the compiler thought of it, no two types have one name. What it guesses there
# of sizes in the libraries' headers is wrong.
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  target_link_options(velmora_code INTERFACE -Werror=odr -Werror=lto-type-mismatch
                                             -Wno-alloc-size-larger-than -Wno-stringop-overflow)
endif()

# Counts lie in a file that is the counters' own memory: those of a process that is killed are not lost.
add_library(velmora_counted INTERFACE)
if(VELMORA_COVERAGE)
  target_compile_options(velmora_counted INTERFACE -fprofile-instr-generate -fcoverage-mapping -O0
                                                   "SHELL:-mllvm -runtime-counter-relocation")
  target_link_options(velmora_code INTERFACE -fprofile-instr-generate)
endif()

# What people run is hardened, for it reads what strangers made: the check `hardening` holds the built files against it.
# Bound at the start: the tables of addresses are read-only then.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fcf-protection VELMORA_HAS_CF_PROTECTION)
if(NOT VELMORA_SANITIZE)
  set(shipped $<NOT:$<CONFIG:Debug,RelWithDebInfo>>)
  target_compile_options(velmora_code INTERFACE
    $<${shipped}:-U_FORTIFY_SOURCE> $<${shipped}:-D_FORTIFY_SOURCE=2> $<${shipped}:-fstack-protector-strong>
    $<${shipped}:-fstack-clash-protection> $<$<AND:${shipped},$<BOOL:${VELMORA_HAS_CF_PROTECTION}>>:-fcf-protection>)
  target_link_options(velmora_code INTERFACE $<${shipped}:LINKER:-z,relro,-z,now,-z,noexecstack>)
endif()

# What code of the program itself is held to beside that; the tests' own is not.
add_library(velmora_careful INTERFACE)
target_compile_options(velmora_careful INTERFACE -Wconversion -Wsign-conversion -Wold-style-cast -Wextra-semi)
target_link_libraries(velmora_careful INTERFACE velmora_counted)
if(NOT VELMORA_SANITIZE AND NOT VELMORA_COVERAGE)
  target_compile_options(velmora_careful INTERFACE
    $<$<CONFIG:RelWithDebInfo>:-U_FORTIFY_SOURCE> $<$<CONFIG:RelWithDebInfo>:-D_FORTIFY_SOURCE=2>)
endif()

# What most sources of a target include is read and compiled once for all of them, which takes a third off a cold build.
# Builds without the tests read it in each source, and so find the one that forgot an include.
set(common_headers <algorithm> <chrono> <functional> <map> <memory> <optional> <sstream> <string> <vector>)
set(qt_headers <QApplication> <QMouseEvent> <QPainter> <QTimer>)
function(velmora_read_once target)
  if(BUILD_TESTING)
    target_precompile_headers(${target} PRIVATE ${ARGN})
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
                                             "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>") # for ccache
  endif()
endfunction()

# The library `velmora_NAME` of the sources in this folder. SEES: rooms. LINKS: libraries from outside. READS: headers that
# most of the sources include, beside the common ones.
function(velmora_room name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SEES;LINKS;READS")
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  add_library(velmora_${name} STATIC ${sources})
  list(TRANSFORM arg_SEES PREPEND velmora_)
  target_link_libraries(velmora_${name} PUBLIC velmora_code ${arg_SEES} PRIVATE velmora_careful ${arg_LINKS})
  list(LENGTH sources count)
  if(count GREATER 10)
    velmora_read_once(velmora_${name} ${common_headers} ${arg_READS})
  endif()
endfunction()

# A room in a file of its own, build/modules/velmora-NAME.so, which the program binds when it is first needed. What the
# room sees, it finds in the program. Programs that link `velmora_modules` have all of them inside.
set(modules ${CMAKE_INSTALL_LIBDIR}/velmora)
add_library(velmora_modules INTERFACE)
target_link_options(velmora_modules INTERFACE LINKER:--export-dynamic-symbol=velmora_*)
add_library(velmora_ground INTERFACE) # what modules see, whole: the program itself may use less of it
function(velmora_module name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SEES;LINKS")
  velmora_room(${name} SEES ${arg_SEES} LINKS ${arg_LINKS})
  set_target_properties(velmora_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  add_library(${name}_module MODULE $<TARGET_OBJECTS:velmora_${name}>)
  set_target_properties(${name}_module PROPERTIES PREFIX "" OUTPUT_NAME velmora-${name}
                        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/modules)
  target_link_libraries(${name}_module PRIVATE velmora_code ${arg_LINKS})
  install(TARGETS ${name}_module DESTINATION ${modules})
  target_link_libraries(velmora_modules INTERFACE $<LINK_LIBRARY:WHOLE_ARCHIVE,velmora_${name}>)
  list(TRANSFORM arg_SEES PREPEND velmora_)
  set_property(TARGET velmora_ground APPEND PROPERTY rooms ${arg_SEES})
endfunction()

# Which build this is: the same for the program and its modules, another one when any of their sources is another.
file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} *.h *.cpp)
list(FILTER sources EXCLUDE REGEX "^(tests|bench|packaging|build)/")
list(JOIN sources "\n" list)
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/sources.txt CONTENT "${list}\n")
set(build_id ${PROJECT_BINARY_DIR}/generated/build_id.h)
add_custom_command(OUTPUT ${build_id}.stamp BYPRODUCTS ${build_id}
  COMMAND ${CMAKE_COMMAND} -D OUTPUT=${build_id} -D VERSION=${PROJECT_VERSION} -D LIST=${PROJECT_BINARY_DIR}/sources.txt
          -P ${PROJECT_SOURCE_DIR}/cmake/build_id.cmake
  COMMAND ${CMAKE_COMMAND} -E touch ${build_id}.stamp
  DEPENDS ${sources} cmake/build_id.cmake ${PROJECT_BINARY_DIR}/sources.txt
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
add_custom_target(build_id DEPENDS ${build_id}.stamp)
