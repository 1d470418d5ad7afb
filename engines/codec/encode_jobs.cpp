// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_jobs.h"

#include "engines/codec/conversion_queue.h"
#include "engines/codec/encode_file.h"
#include "engines/formats/wav_source.h"
#include "files/file_to_open.h"
#include "files/folders.h"
#include "platform/failure.h"
#include "platform/numbers.h"

namespace codec
{

namespace
{

struct Judged {
    Text path;
    bool isFit = false;
};

Judged judged(const Text& path, const Text& output)
{
    const bool isWav = succeeds([&] { formats::WavSource(files::InputFile::openOrFail(path)); });
    return {path, isWav && !files::isSameFile(path, output)};
}

class EncodeJobs final : public Mp3Enc
{
public:
    EncodeJobs(Post& post, Shell& shell, PartNotes& notes) :
        notes_(notes), queue_(post, shell, "Encoding failed",
                              {[this](std::int32_t position) { Progress.raise(position); },
                               [this](std::uint64_t) { finish(); }})
    {
    }

    std::int32_t Bitrate() const override { return settings_.bitrate; }
    void setBitrate(std::int32_t bitsPerSecond) override { settings_.bitrate = bitsPerSecond; }
    void setBitrate(const Text& bitsPerSecond) override { settings_.bitrate = toInteger32(bitsPerSecond); }
    void setHalfSampleRate(bool half) override { settings_.halfSampleRate = half; }

    std::int16_t Open(const Text& input, const Text& output) override
    {
        const auto file =
            files::answerOfFile<Judged>(input, [output](const Text& path) { return judged(path, output); });
        input_ = file ? file->path : input;
        output_ = output;
        isOpen_ = file && file->isFit;
        return isOpen_ ? 0 : 1;
    }

    // Also what could not be opened is tried: the reason may have passed, and `Done` must come.
    void Start() override
    {
        ++unfinished_;
        queue_.add({0, input_,
                    [input = input_, output = output_, settings = settings_,
                     &notes = notes_](const Report& report, const std::stop_token& stop) {
                        encodeFile(input, output, settings, coreCount(), report, stop, notes);
                    }});
    }

    std::int32_t Length() const override { return isOpen_ || unfinished_ > 0 ? 1000 : 0; }

private:
    void finish()
    {
        --unfinished_;
        Done.raise();
    }

    PartNotes& notes_;
    Mp3Settings settings_;
    Text input_;
    Text output_;
    bool isOpen_ = false;
    int unfinished_ = 0;
    ConversionQueue queue_; // the last member: its conversion ends first
};

}

std::unique_ptr<Mp3Enc> makeEncodeJobs(Post& post, Shell& shell, PartNotes& notes)
{
    return std::make_unique<EncodeJobs>(post, shell, notes);
}

}
