// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/key_codes.h"

#include <QKeyEvent>
#include <string_view>

namespace
{

struct Code {
    int key;
    std::int16_t code;
};

// clang-format off
constexpr Code codes[] = {
    {Qt::Key_Left, 37}, {Qt::Key_Up, 38}, {Qt::Key_Right, 39}, {Qt::Key_Down, 40},
    {Qt::Key_PageUp, 33}, {Qt::Key_PageDown, 34}, {Qt::Key_End, 35}, {Qt::Key_Home, 36}, {Qt::Key_Delete, 46}, {Qt::Key_Return, 13}, {Qt::Key_Enter, 13}, {Qt::Key_Escape, 27}, {Qt::Key_Space, 32},
};
// clang-format on

// The letters of the three rows of keys, from the scan code of each row's first key on.
struct KeyRow {
    unsigned first;
    std::string_view letters;
};
constexpr KeyRow keyRows[] = {{24, "QWERTYUIOP"}, {38, "ASDFGHJKL"}, {52, "ZXCVBNM"}};

std::int16_t letterByPlace(unsigned scanCode)
{
    for (const auto& row : keyRows)
        if (scanCode >= row.first && scanCode < row.first + row.letters.size())
            return row.letters[scanCode - row.first];
    return 0;
}

}

std::int16_t keyCodeOf(const QKeyEvent& event)
{
    const int key = event.key();
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
        return static_cast<std::int16_t>(key);
    for (const auto& code : codes)
        if (code.key == key)
            return code.code;
    return key >= 0x80 && key < 0x01000000 ? letterByPlace(event.nativeScanCode()) : std::int16_t{0};
}

std::int16_t shiftStateOf(const QInputEvent& event)
{
    const auto keys = event.modifiers();
    return static_cast<std::int16_t>((keys & Qt::ShiftModifier ? 1 : 0) |
                                     (keys & Qt::ControlModifier ? 2 : 0) | (keys & Qt::AltModifier ? 4 : 0));
}
