# A room is a folder with a library of its own. It sees the rooms that it names, and those that they see; the check
# `layers` holds every include against these lists.

# How all code is built: warnings, sanitizers, one root for includes.
add_library(velmora_code INTERFACE)
target_include_directories(velmora_code INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
target_compile_options(velmora_code INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual $<$<BOOL:${VELMORA_WERROR}>:-Werror>)
if(VELMORA_SANITIZE)
  target_compile_options(velmora_code INTERFACE -fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer
                                                -fno-sanitize-recover=all)
  target_link_options(velmora_code INTERFACE -fsanitize=${VELMORA_SANITIZE})
endif()

# The library `velmora_NAME` of the sources in this folder. SEES: rooms. LINKS: libraries from outside.
function(velmora_room name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SEES;LINKS")
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  add_library(velmora_${name} STATIC ${sources})
  list(TRANSFORM arg_SEES PREPEND velmora_)
  target_link_libraries(velmora_${name} PUBLIC velmora_code ${arg_SEES} PRIVATE ${arg_LINKS})
endfunction()
