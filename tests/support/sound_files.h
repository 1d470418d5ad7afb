// SPDX-License-Identifier: GPL-3.0-or-later
// Sound files made in a test.
#pragma once

#include "platform/text.h"
#include "tests/support/sound_server.h"

#include <cmath>
#include <functional>
#include <lame/lame.h>
#include <mpg123.h>
#include <random>
#include <sndfile.h>

// Noise without a silent frame: no frame can be lost or doubled unseen.
inline StereoFrames noise(std::size_t frames, unsigned seed = 1)
{
    std::minstd_rand random(seed);
    StereoFrames made(frames);
    for (auto& frame : made)
        frame = {static_cast<std::int16_t>(random() % 20000 + 1),
                 static_cast<std::int16_t>(random() % 20000 + 1)};
    return made;
}

// Every frame tells its number: the left channel counts up to 32767, the right one how often it did, from 1.
inline StereoFrames counting(std::size_t frames)
{
    StereoFrames made(frames);
    for (std::size_t n = 0; n < frames; ++n)
        made[n] = {static_cast<std::int16_t>(n & 0x7fff), static_cast<std::int16_t>(1 + (n >> 15))};
    return made;
}

inline std::int64_t numberOf(StereoFrame frame)
{
    return (static_cast<std::int64_t>(frame.right) - 1) << 15 | frame.left;
}

inline StereoFrames tone(std::size_t frames, int rate = 44100, double hertz = 440)
{
    StereoFrames made(frames);
    for (std::size_t n = 0; n < frames; ++n) {
        const double value = std::sin(2 * 3.14159265358979 * hertz * static_cast<double>(n) / rate);
        made[n] = {static_cast<std::int16_t>(std::lrint(value * 12000)),
                   static_cast<std::int16_t>(std::lrint(value * 9000))};
    }
    return made;
}

inline Text putWav(const Text& path, const StereoFrames& frames, int rate = 44100,
                   int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16)
{
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = 2;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_command(file, SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
    sf_writef_short(file, &frames.data()->left, static_cast<sf_count_t>(frames.size()));
    sf_close(file);
    return path;
}

struct Mp3Settings {
    int rate = 44100;
    int bitrate = 128; // kilobits
    bool isVariable = false;
    bool isMono = false;
    bool isFreeFormat = false;
    bool hasInfoFrame = true;
};

inline Text mp3Bytes(const StereoFrames& frames, const Mp3Settings& settings = {})
{
    lame_global_flags* lame = lame_init();
    lame_set_in_samplerate(lame, settings.rate);
    lame_set_out_samplerate(lame, settings.rate);
    lame_set_num_channels(lame, 2);
    lame_set_brate(lame, settings.bitrate);
    lame_set_free_format(lame, settings.isFreeFormat ? 1 : 0);
    lame_set_mode(lame, settings.isMono ? MONO : JOINT_STEREO);
    lame_set_VBR(lame, settings.isVariable ? vbr_mtrh : vbr_off);
    lame_set_bWriteVbrTag(lame, settings.hasInfoFrame ? 1 : 0);
    lame_set_quality(lame, 9);
    lame_init_params(lame);

    Text bytes(frames.size() * 2 + 100000, '\0');
    auto* out = reinterpret_cast<unsigned char*>(bytes.data());
    auto* samples = const_cast<short*>(&frames.data()->left);
    int size = lame_encode_buffer_interleaved(lame, samples, static_cast<int>(frames.size()), out,
                                              static_cast<int>(bytes.size()));
    size += lame_encode_flush(lame, out + size, static_cast<int>(bytes.size()) - size);
    if (settings.hasInfoFrame)
        lame_get_lametag_frame(lame, out, bytes.size());
    lame_close(lame);
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

// What the library by itself makes of an MP3 file: its gapless decoding to 16-bit stereo.
inline StereoFrames decoded(const Text& path)
{
    mpg123_init();
    mpg123_handle* handle = mpg123_new(nullptr, nullptr);
    mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_FORCE_STEREO | MPG123_GAPLESS, 0);
    mpg123_param(handle, MPG123_RESYNC_LIMIT, 1024 * 1024, 0);
    mpg123_format_none(handle);
    mpg123_format2(handle, 0, MPG123_STEREO, MPG123_ENC_SIGNED_16);
    mpg123_open(handle, path.c_str());
    StereoFrames frames;
    StereoFrames part(8192);
    int result = MPG123_OK;
    while (result == MPG123_OK || result == MPG123_NEW_FORMAT) {
        std::size_t bytes = 0;
        result = mpg123_read(handle, reinterpret_cast<unsigned char*>(part.data()),
                             part.size() * sizeof(StereoFrame), &bytes);
        frames.insert(frames.end(), part.begin(),
                      part.begin() + static_cast<std::ptrdiff_t>(bytes / sizeof(StereoFrame)));
    }
    mpg123_delete(handle);
    return frames;
}
