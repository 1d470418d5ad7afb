// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/module.h"

#include "build_id.h"
#include "files/folders.h"
#include "platform/mutex.h"
#include "platform/paths.h"

#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>

namespace files
{

namespace
{

// Beside the program in a portable copy, else where it was installed.
constexpr const char* places[] = {"modules", VELMORA_MODULE_FOLDER};

struct Modules {
    Mutex mutex;
    std::map<std::string_view, const void*> bound GUARDED_BY(mutex);
    std::function<void(const Text&)> tell GUARDED_BY(mutex) = [](const Text& words) {
        std::fprintf(stderr, "Velmora: A part of Velmora is missing: %s\n", words.c_str());
    };
};

// Never destroyed: threads that were left behind may ask to the very end.
Modules& modules()
{
    static Modules& all = *new Modules;
    return all;
}

Text fileOf(const char* module)
{
    std::error_code failed;
    const Text program = std::filesystem::read_symlink("/proc/self/exe", failed).string();
    const Text name = Text("velmora-") + module + ".so";
    for (const char* place : places)
        if (const Text path = joined(joined(folderOf(program), place), name); isFile(path))
            return path;
    throw Text(name + " is missing. Velmora has to be installed anew.");
}

const ModuleHead& headIn(void* file, const char* module)
{
    const auto* head = static_cast<const ModuleHead*>(dlsym(file, (Text("velmora_") + module).c_str()));
    if (head == nullptr)
        throw Text(dlerror());
    return *head;
}

// What is linked into this program is there already.
const ModuleHead* linked(const char* module)
{
    return static_cast<const ModuleHead*>(dlsym(RTLD_DEFAULT, (Text("velmora_") + module).c_str()));
}

const void* partsInFile(const char* module)
{
    const Text path = fileOf(module);
    void* const file = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (file == nullptr)
        throw Text(dlerror());
    const ModuleHead& head = headIn(file, module);
    if (head.build != std::string_view(VELMORA_BUILD))
        throw Text(path + " belongs to another build of Velmora, which has to be installed anew.");
    return head.parts;
}

}

const char* buildName() { return VELMORA_BUILD; }

const void* partsOf(const char* module)
{
    Modules& all = modules();
    const Lock lock(all.mutex);
    const auto [known, isNew] = all.bound.try_emplace(module, nullptr);
    if (!isNew)
        return known->second;
    try {
        const ModuleHead* const here = linked(module);
        known->second = here != nullptr ? here->parts : partsInFile(module);
    } catch (const Text& reason) {
        all.tell(reason);
    }
    return known->second;
}

void tellTroubleOfModules(std::function<void(const Text&)> tell)
{
    Modules& all = modules();
    const Lock lock(all.mutex);
    all.tell = std::move(tell);
}

}
