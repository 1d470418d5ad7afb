// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_profile_file.h"

#include "files/profile_text.h"
#include "platform/failure.h"

namespace files
{

namespace
{

std::string_view withoutBlanksBehind(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::size_t fill(std::string_view text, char* buffer, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t length = text.copy(buffer, size - 1);
    buffer[length] = '\0';
    return length;
}

// A missing file is an empty one; one that cannot be read must not be taken for that and overwritten.
Text contentOrNothing(TextFiles& files, const Text& file)
{
    Text text;
    const auto unlessMissing = [](const Failure& failure) {
        if (!failure.is(Trouble::fileNotFound))
            throw failure;
    };
    guarded(unlessMissing, [&] { text = files.readWhole(file); });
    return text;
}

void replaceContent(TextFiles& files, const Text& file, const Text& text)
{
    const auto output = files.openForOutput(file);
    output->write(text);
    output->finish();
}

}

std::size_t DiskProfileFile::read(const Text& section, const Text& key, const Text& fallback, char* buffer,
                                  std::size_t size, const Text& file)
{
    Text text;
    succeeds([&] { text = files_.readWhole(file); });
    return fill(profileValue(text, section, key).value_or(withoutBlanksBehind(fallback)), buffer, size);
}

bool DiskProfileFile::write(const Text& section, const Text& key, const Text& value, const Text& file)
{
    const Entry entry{section, key, value, file};
    if (trust_.holds() && entry == last_)
        return true;
    trust_.end();
    if (!fitsProfile(section, key, value) || !put(entry))
        return false;
    last_ = entry;
    trust_.begin();
    return true;
}

bool DiskProfileFile::put(const Entry& entry)
{
    return complaint_.unless([&] {
        const Text old = contentOrNothing(files_, entry.file);
        const Text changed = profileWith(old, entry.section, entry.key, entry.value);
        if (changed != old)
            replaceContent(files_, entry.file, changed);
    });
}

}
