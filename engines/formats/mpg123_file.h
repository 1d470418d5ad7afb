// SPDX-License-Identifier: GPL-3.0-or-later
// A libmpg123 decoder over the frames of an open MP3 file, set up the one way in which the program decodes:
// 16 bits, exact seeks, tags left out. For one thread at a time.
#pragma once

#include "engines/formats/mp3_probe.h"

#include <cstdint>
#include <memory>
#include <span>

struct mpg123_handle_struct;

namespace formats
{

class Mpg123File
{
public:
    struct Options {
        bool forceStereo = true; // otherwise the file's own channels
        bool gapless = true;     // leaves out what `Mp3Facts` calls skipped
    };

    Mpg123File(std::shared_ptr<const files::InputFile> file, const Mp3Facts& facts, Options options);
    ~Mpg123File();
    Mpg123File(const Mpg123File&) = delete;
    Mpg123File& operator=(const Mpg123File&) = delete;

    bool isOpen() const { return isOpen_; }

    // Decodes into `samples` and returns how many it set; 0 at the end, when nothing more can be decoded, and
    // once where the sample rate changes: `rate` then says the new one, and reading goes on.
    std::size_t read(std::span<std::int16_t> samples);

    int rate() const { return rate_; } // hertz, of what `read` gave last and gives next
    int channels() const { return channels_; }

    bool seek(std::int64_t sample);               // of each channel, skipped ones not counted
    bool seekFrame(std::int64_t frame, int rate); // an Info frame not counted; `rate` is that frame's

    // Reads every frame's header as the decoder itself does, and counts their samples.
    std::int64_t countSamples();

private:
    struct Reader;

    bool learnFormat();

    std::unique_ptr<Reader> reader_;
    mpg123_handle_struct* handle_ = nullptr;
    bool isOpen_ = false;
    int rate_ = 0;
    int nextRate_ = 0; // of what the decoder has ready
    int channels_ = 0;
};

}
