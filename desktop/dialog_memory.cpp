// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/dialog_memory.h"

#include "files/output_file.h"
#include "platform/numbers.h"
#include "platform/paths.h"

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
    const Text size = textOf(dialog.width) + ' ' + textOf(dialog.height);
    succeeds([&] { files::replaceFile(path_, size + '\n' + dialog.folder + '\n', notes_); });
}

}
