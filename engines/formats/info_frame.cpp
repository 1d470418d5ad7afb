// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/info_frame.h"

#include "platform/byte_order.h"

#include <algorithm>
#include <string_view>

namespace formats
{

namespace
{

// Reads what is there: past the end of the frame everything is missing.
class Fields
{
public:
    explicit Fields(std::span<const unsigned char> bytes) : bytes_(bytes) {}

    bool has(std::size_t count) const { return bytes_.size() >= count; }
    void skip(std::size_t count) { bytes_ = bytes_.subspan(std::min(count, bytes_.size())); }
    std::span<const unsigned char> rest() const { return bytes_; }

    std::optional<std::uint32_t> number()
    {
        if (!has(4))
            return std::nullopt;
        const auto value = fromBigEndian(bytesFrom(bytes_.data(), 4));
        skip(4);
        return static_cast<std::uint32_t>(value);
    }

private:
    std::span<const unsigned char> bytes_;
};

enum Present : std::uint32_t { framesPresent = 1, bytesPresent = 2, indexPresent = 4, qualityPresent = 8 };

constexpr std::size_t indexBytes = 100;
constexpr std::size_t lameBytes = 24;

void readDelays(InfoFrame& info, const Fields& fields)
{
    if (!fields.has(lameBytes) || fields.rest()[0] == 0)
        return;
    const auto delays = fields.rest().subspan(21, 3);
    info.delay = delays[0] << 4 | delays[1] >> 4;
    info.padding = (delays[1] & 15) << 8 | delays[2];
}

}

std::optional<InfoFrame> infoFrame(const MpegHeader& header, std::span<const unsigned char> frame)
{
    Fields fields(frame);
    fields.skip(4 + 2); // the header, and a checksum where there is one
    // The note stands where the side information of an unprotected frame ends, protected or not.
    const auto sideInfo = static_cast<std::size_t>(header.sideInfo - (header.isProtected() ? 2 : 0)) - 4 - 2;
    if (!fields.has(sideInfo + 8) ||
        std::any_of(fields.rest().begin(), fields.rest().begin() + static_cast<std::ptrdiff_t>(sideInfo),
                    [](unsigned char byte) { return byte != 0; }))
        return std::nullopt;
    fields.skip(sideInfo);

    const std::string_view mark(reinterpret_cast<const char*>(fields.rest().data()), 4);
    if (mark != "Info" && mark != "Xing")
        return std::nullopt;
    InfoFrame info;
    info.isConstant = mark == "Info";
    fields.skip(4);
    const std::uint32_t present = fields.number().value_or(0);
    if ((present & framesPresent) != 0)
        info.frames = fields.number();
    if (info.frames == 0u)
        info.frames.reset();
    if ((present & bytesPresent) != 0)
        info.bytes = fields.number();
    if ((present & indexPresent) != 0)
        fields.skip(indexBytes);
    if ((present & qualityPresent) != 0)
        fields.skip(4);
    readDelays(info, fields);
    return info;
}

}
