// SPDX-License-Identifier: GPL-3.0-or-later
// Parts of the program that lie in files of their own beside it. Each is bound when it is first needed: the
// start shall not pay for the libraries of the sound server, of codecs, drives and the web.
#pragma once

#include "platform/text.h"

#include <functional>

namespace files
{

// What a module's file shows of itself, under the name velmora_MODULE.
struct ModuleHead {
    const char* build; // only a program of the same build knows the shape of the parts
    const void* parts;
};

// Which build this is.
const char* buildName();

// Nothing where the file is missing, does not bind, or is of another build: told once, in words. From any
// thread; the first call takes as long as the loader does.
const void* partsOf(const char* module);

template <typename Parts>
const Parts* bound()
{
    return static_cast<const Parts*>(partsOf(Parts::module));
}

// Who is told; until then, standard error is.
void tellTroubleOfModules(std::function<void(const Text& words)> tell);

}
