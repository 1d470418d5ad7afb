// SPDX-License-Identifier: GPL-3.0-or-later
// For the one source of a module that shows its parts.
#pragma once

#include "build_id.h"
#include "files/module.h"

#define VELMORA_MODULE(name, parts)                                                                          \
    extern "C" const files::ModuleHead velmora_##name;                                                       \
    extern "C" const files::ModuleHead velmora_##name { VELMORA_BUILD, &(parts) }
