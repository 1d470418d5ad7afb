// SPDX-License-Identifier: GPL-3.0-or-later
// WAV files made and read in a test.
#pragma once

#include "engines/formats/wav_header.h"
#include "platform/text.h"
#include "tests/support/files.h"
#include "tests/support/music.h"

#include <cstring>
#include <sndfile.h>

// The plain form, written byte by byte.
inline Text putPcmWav(const Text& path, const Pcm& pcm)
{
    const auto bytes = static_cast<std::int64_t>(pcm.samples.size() * 2);
    const auto header = formats::wavHeader(pcm.rate, pcm.channels, bytes);
    Text file(header.begin(), header.end());
    file.append(reinterpret_cast<const char*>(pcm.samples.data()), static_cast<std::size_t>(bytes));
    putFile(path, file);
    return path;
}

// Any form that libsndfile writes.
inline Text putWavAs(const Text& path, const Pcm& pcm, int format)
{
    SF_INFO info{};
    info.samplerate = pcm.rate;
    info.channels = pcm.channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<float> samples;
    for (const auto sample : pcm.samples)
        samples.push_back(sample / 32768.0f);
    sf_writef_float(file, samples.data(), pcm.frames());
    sf_close(file);
    return path;
}

inline Pcm readWav(const Text& path)
{
    SF_INFO info{};
    Pcm pcm;
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file)
        return pcm;
    pcm.rate = info.samplerate;
    pcm.channels = info.channels;
    pcm.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    sf_readf_short(file, pcm.samples.data(), info.frames);
    sf_close(file);
    return pcm;
}
