// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/call.h"

#include <string_view>

namespace simulated
{

namespace
{

int profile(const Call& call)
{
    if (!call.hasDisc())
        return 0;
    switch (call.drive.medium.kind) {
    case Kind::recordable:
        return 0x09;
    case Kind::rewritable:
        return 0x0A;
    case Kind::dvd:
        return 0x11;
    default:
        return 0x08;
    }
}

void addFeature(Bytes& bytes, int code, bool isCurrent, const Bytes& data)
{
    add16(bytes, code);
    bytes.push_back(isCurrent ? 1 : 0);
    bytes.push_back(static_cast<std::uint8_t>(data.size()));
    bytes.insert(bytes.end(), data.begin(), data.end());
}

Bytes writeParameters()
{
    Bytes page(0x34);
    page[0] = 0x05;
    page[1] = 0x32;
    page[2] = 0x41;
    page[4] = 8;
    page[15] = 150;
    return page;
}

Bytes capabilities(const Call& call)
{
    constexpr int speeds[] = {4234, 2824, 1411, 706};
    const int writes = call.drive.canWrite ? 3 : 0;
    Bytes page = {0x2A, 0,    0x03, static_cast<std::uint8_t>(writes | (call.drive.canSimulate ? 4 : 0)),
                  0xF1, 0x77, 0x29, 0x23};
    for (const int value : {8467, 256, 2048, 8467, 0, speeds[0], speeds[0], 0, 0, 0, speeds[0], 4})
        add16(page, value);
    for (const int speed : speeds) {
        add16(page, 0);
        add16(page, speed);
    }
    page[1] = static_cast<std::uint8_t>(page.size() - 2);
    return page;
}

Bytes errorRecovery() { return {0x01, 0x0A, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0}; }

}

std::size_t testUnitReady(Call&) { return 0; }

std::size_t requestSense(Call& call)
{
    Bytes bytes(18);
    bytes[0] = 0x70;
    bytes[7] = 10;
    return answer(call, bytes, call.at(4));
}

std::size_t inquiry(Call& call)
{
    Bytes bytes = {0x05, 0x80, 0x05, 0x32, 31, 0, 0, 0};
    const auto padded = [&](std::string_view text, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(i < text.size() ? text[i] : ' '));
    };
    padded(call.drive.vendor, 8);
    padded(call.drive.product, 16);
    padded("1.00", 4);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(3)));
}

std::size_t startStop(Call& call)
{
    const bool moves = (call.at(4) & 2) != 0;
    const bool starts = (call.at(4) & 1) != 0;
    if (moves && !starts && call.drive.isLocked)
        throw removalLocked;
    if (moves) {
        call.drive.hasNewMedium |= call.drive.trayIsOpen && starts;
        call.drive.trayIsOpen = !starts;
    }
    return 0;
}

std::size_t preventRemoval(Call& call)
{
    call.drive.isLocked = (call.at(4) & 1) != 0;
    return 0;
}

std::size_t getConfiguration(Call& call)
{
    const int current = profile(call);
    const bool canRecord = call.drive.canWrite && (current == 0x09 || current == 0x0A);
    const auto test = static_cast<std::uint8_t>(call.drive.canSimulate ? 4 : 0);
    Bytes profiles;
    for (const int known : {0x08, 0x09, 0x0A}) {
        add16(profiles, known);
        add16(profiles, known == current ? 0x100 : 0);
    }
    Bytes bytes(4);
    add16(bytes, 0);
    add16(bytes, current);
    addFeature(bytes, 0x00, true, profiles);
    addFeature(bytes, 0x01, true, {0, 0, 0, 7, 0, 0, 0, 0});
    addFeature(bytes, 0x03, true, {0x29, 0, 0, 0});
    addFeature(bytes, 0x1E, current != 0, {0, 0, 0, 0});
    addFeature(bytes, 0x2D, canRecord, {static_cast<std::uint8_t>(0x42 | test), 0, 0, 0});
    addFeature(bytes, 0x2E, canRecord, {static_cast<std::uint8_t>(0x62 | test), 0, 0, 0});
    const auto length = static_cast<std::int32_t>(bytes.size() - 4);
    bytes[2] = static_cast<std::uint8_t>(length >> 8);
    bytes[3] = static_cast<std::uint8_t>(length);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t getEvent(Call& call)
{
    Bytes bytes = {0, 6, 4, 0x10, 0, 0, 0, 0};
    bytes[4] = call.drive.hasNewMedium ? 2 : 0;
    bytes[5] = static_cast<std::uint8_t>((call.drive.trayIsOpen ? 1 : 0) | (call.hasDisc() ? 2 : 0));
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t modeSense(Call& call)
{
    Bytes page;
    switch (call.at(2) & 0x3F) {
    case 0x01:
        page = errorRecovery();
        break;
    case 0x05:
        page = writeParameters();
        break;
    case 0x2A:
        page = capabilities(call);
        break;
    default:
        throw invalidField;
    }
    constexpr std::size_t headerBytes = 8;
    page.insert(page.begin(), headerBytes, 0);
    setLength16(page);
    return answer(call, page, static_cast<std::size_t>(call.number16(7)));
}

std::size_t readBufferCapacity(Call& call)
{
    constexpr std::int32_t size = 2 * 1024 * 1024;
    Bytes bytes = {0, 0, 0, 0};
    for (int i = 0; i < 2; ++i)
        add32(bytes, size);
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t setSpeed(Call& call)
{
    call.drive.writeSpeed = call.number16(4);
    return 0;
}

std::size_t accepted(Call&) { return 0; }

}
