# SPDX-License-Identifier: GPL-3.0-or-later
# Writes the header that names the build by its version and by what its sources hold. The same sources give the same name.
cmake_policy(VERSION 3.25)
file(STRINGS ${LIST} sources)
foreach(source ${sources})
  file(SHA256 ${source} hash)
  string(APPEND hashes "${source} ${hash}\n")
endforeach()
string(SHA256 whole "${hashes}")
string(SUBSTRING ${whole} 0 16 short)
file(CONFIGURE OUTPUT ${OUTPUT} @ONLY CONTENT "// Written by the build.
#pragma once

#define VELMORA_BUILD \"@VERSION@-@short@\"
")
