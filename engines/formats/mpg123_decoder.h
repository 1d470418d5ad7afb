// SPDX-License-Identifier: GPL-3.0-or-later
// libmpg123 on frames of Layer III, set up the one way in which the program decodes: 16 bits, tags left out,
// damage skipped for up to 64 KB. For one thread at a time.
#pragma once

#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct mpg123_handle_struct;

namespace formats
{

// What is decoded: a stretch of a file, with other bytes in front of it.
struct FrameInput {
    std::shared_ptr<const files::InputFile> file;
    std::int64_t begin = 0; // byte
    std::int64_t end = 0;
    std::vector<std::uint8_t> front = {};
};

class Mpg123Decoder
{
public:
    struct Options {
        int channels = 2;       // mono becomes stereo, and stereo mono
        bool gapless = true;    // leaves out what `Mp3Facts` calls skipped
        bool keepsRate = false; // what has another rate than the first frame is converted to that one
        bool isShort = false;   // as `Mp3Place` says
        bool isCut = false;     // frames from the middle of a file, each taken as it comes
    };

    Mpg123Decoder(FrameInput input, Options options);
    ~Mpg123Decoder();
    Mpg123Decoder(const Mpg123Decoder&) = delete;
    Mpg123Decoder& operator=(const Mpg123Decoder&) = delete;

    bool isOpen() const { return isOpen_; }
    bool hasFailed() const;        // the file could not be read to its end
    std::int64_t position() const; // the byte of the file that is read next

    // The next frame's samples, channels interleaved, valid until the next call. False at the end.
    bool next(std::span<const std::int16_t>& samples);

    // Decodes into `samples` and returns how many it set; 0 at the end, when nothing more can be decoded, and
    // once where the sample rate changes: `rate` then says the new one, and reading goes on.
    std::size_t read(std::span<std::int16_t> samples);

    int rate() const { return rate_; } // hertz, of what is given now

    void seek(std::int64_t sample);               // of each channel, skipped ones not counted
    void seekFrame(std::int64_t frame, int rate); // an Info frame not counted; `rate` is that frame's

    // Reads every frame's header as the decoder itself does, and counts their samples.
    std::int64_t countSamples();

private:
    struct Reader;

    bool learnRate();
    void allow(int rate, int channels);

    std::unique_ptr<Reader> reader_;
    mpg123_handle_struct* handle_;
    bool isOpen_ = false;
    int rate_ = 0;
    int nextRate_ = 0; // of what the decoder has ready
};

}
