// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/lame_encoder.h"

#include "platform/failure.h"
#include "platform/mutex.h"

#include <lame/lame.h>

namespace codec
{

namespace
{

struct CloseEncoder {
    void operator()(lame_t encoder) const { lame_close(encoder); }
};

// The first `lame_init` of a process fills tables that all encoders share.
lame_t newEncoder()
{
    static Mutex mutex;
    const Lock lock(mutex);
    return lame_init();
}

void keepSilent(const char*, va_list) {}

// What libmp3lame asks for: room for a call's frames, and for the reservoir.
std::size_t roomFor(std::size_t frames) { return frames * 5 / 4 + 7200; }

}

struct LameEncoder::Parts {
    std::unique_ptr<lame_global_struct, CloseEncoder> lame;
    EncodeClock clock;

    // Lets `call` write into the end of `out`; it returns the bytes written, less than 0 for a failure.
    template <typename Call>
    void append(Mp3Bytes& out, std::size_t room, Call call) const
    {
        const auto before = out.size();
        out.resize(before + room);
        const int written = call(out.data() + before, static_cast<int>(room));
        if (written < 0)
            throw Failure{Trouble::deviceInputOutput, "The encoder refused the sound."};
        out.resize(before + static_cast<std::size_t>(written));
    }
};

LameEncoder::LameEncoder(const Mp3Settings& settings, int rate, int channels) :
    parts_(std::make_unique<Parts>())
{
    parts_->lame.reset(newEncoder());
    lame_t lame = parts_->lame.get();
    if (!lame)
        throw Failure{Trouble::deviceInputOutput, "The encoder cannot be started."};
    lame_set_errorf(lame, keepSilent);
    lame_set_msgf(lame, keepSilent);
    lame_set_debugf(lame, keepSilent);

    const int rateOut = sampleRate(settings);
    const auto clock = EncodeClock::of(rate, rateOut, settings.halfSampleRate ? 576 : 1152);
    lame_set_num_channels(lame, channels);
    lame_set_in_samplerate(lame, clock.rateIn);
    lame_set_out_samplerate(lame, clock.rateOut);
    lame_set_brate(lame, kilobits(settings));
    lame_set_write_id3tag_automatic(lame, 0);
    if (channels == 1)
        lame_set_mode(lame, MONO);
    if (lame_init_params(lame) < 0)
        throw Failure{Trouble::deviceInputOutput, "The encoder cannot take this sound."};
    parts_->clock = clock;
}

LameEncoder::~LameEncoder() = default;

EncodeClock LameEncoder::clock() const { return parts_->clock; }

std::int64_t LameEncoder::frames() const { return lame_get_frameNum(parts_->lame.get()); }

void LameEncoder::encode(const formats::SoundBlock& block, Mp3Bytes& out)
{
    const auto outputs =
        static_cast<std::size_t>(parts_->clock.outputSamples(static_cast<std::int64_t>(block.frames())));
    parts_->append(out, roomFor(outputs), [&](unsigned char* to, int room) {
        return lame_encode_buffer_float(parts_->lame.get(), block.left.data(), block.right.data(),
                                        static_cast<int>(block.frames()), to, room);
    });
}

void LameEncoder::flushAtFrame(Mp3Bytes& out)
{
    parts_->append(out, roomFor(0), [&](unsigned char* to, int room) {
        return lame_encode_flush_nogap(parts_->lame.get(), to, room);
    });
}

void LameEncoder::finish(Mp3Bytes& out)
{
    parts_->append(out, roomFor(0), [&](unsigned char* to, int room) {
        return lame_encode_flush(parts_->lame.get(), to, room);
    });
}

Mp3Bytes LameEncoder::infoTag() const
{
    Mp3Bytes tag(lame_get_lametag_frame(parts_->lame.get(), nullptr, 0));
    if (!tag.empty())
        lame_get_lametag_frame(parts_->lame.get(), tag.data(), tag.size());
    return tag;
}

}
