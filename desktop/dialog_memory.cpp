// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/dialog_memory.h"

#include "files/content.h"
#include "files/folders.h"
#include "platform/paths.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace desktop
{

namespace
{

// No screen has less or more.
constexpr int smallest = 100;
constexpr int largest = 20000;

bool isSensible(int pixels) { return pixels >= smallest && pixels <= largest; }

bool isPath(const Text& folder)
{
    return folder.empty() || (folder.starts_with(pathSeparator) && folder.find('\0') == Text::npos);
}

}

RememberedDialog DialogMemory::read() const
{
    RememberedDialog dialog;
    std::istringstream lines(path_.empty() ? Text() : files::contentOf(path_));
    if (!(lines >> dialog.width >> dialog.height) || lines.get() != '\n')
        return {};
    std::getline(lines, dialog.folder);
    const bool isWhole = lines.eof() || lines.peek() == std::istringstream::traits_type::eof();
    if (!isWhole || !isSensible(dialog.width) || !isSensible(dialog.height) || !isPath(dialog.folder))
        return {};
    return dialog;
}

void DialogMemory::write(const RememberedDialog& dialog) const
{
    if (path_.empty() || dialog.folder.find('\n') != Text::npos)
        return;
    files::makeFolders(files::folderOf(path_));
    const Text part = path_ + ".part";
    std::ofstream file(part, std::ios::trunc);
    file << dialog.width << ' ' << dialog.height << '\n' << dialog.folder << '\n';
    file.close();
    if (!file || std::rename(part.c_str(), path_.c_str()) != 0)
        std::remove(part.c_str());
}

}
