// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/sndfile_control.h"

#include "engines/audio/opened_sound.h"
#include "engines/audio/thinned_source.h"
#include "engines/audio/unopened_files.h"
#include "engines/audio/voice.h"
#include "files/file_to_open.h"

#include <algorithm>
#include <optional>

namespace audio
{

namespace
{

class SndfileControl final : public MMControl
{
public:
    SndfileControl(SoundOutput& output, UnopenedFiles& unopened) :
        unopened_(unopened), voice_(output, PlaceAtEnd::stays, [] {})
    {
    }

    void setDeviceType(const Text&) override {}
    void setFileName(const Text& path) override { path_ = path; }
    void setCommand(const Text& word) override;

    std::int32_t Length() const override { return timeline_.milliseconds(timeline_.frames()); }
    std::int32_t Position() const override;
    void setFrom(std::int32_t position) override { from_ = position; }

    State state() const override;
    std::int32_t place() const override { return Position(); }

private:
    void open();
    void play();
    void stop() { voice_.pause(); }
    void close();
    bool waits() const { return from_ && voice_.state() != State::sounding; }

    UnopenedFiles& unopened_;
    Text path_;
    Timeline timeline_;
    std::optional<std::int32_t> from_; // milliseconds
    Voice voice_;
};

void SndfileControl::setCommand(const Text& word)
{
    struct CommandWord {
        const char* word;
        void (SndfileControl::*run)();
    };
    static constexpr CommandWord commands[] = {
        {"Open", &SndfileControl::open},
        {"Play", &SndfileControl::play},
        {"Stop", &SndfileControl::stop},
        {"Close", &SndfileControl::close},
    };
    for (const auto& command : commands)
        if (word == command.word)
            (this->*command.run)();
}

std::int32_t SndfileControl::Position() const
{
    const std::int64_t frame = waits() ? timeline_.frameAtMilliseconds(*from_) : voice_.position();
    return timeline_.milliseconds(std::clamp<std::int64_t>(frame, 0, timeline_.frames()));
}

Hearing::State SndfileControl::state() const
{
    return waits() && timeline_.frames() > 0 ? State::halted : voice_.state();
}

void SndfileControl::open()
{
    close();
    const auto sound =
        files::answerOfFile<std::optional<OpenedSound>>(path_, openWavSound).value_or(std::nullopt);
    if (!sound) {
        unopened_.failed(path_, "WAV");
        return;
    }
    unopened_.opened(path_);
    auto [source, timeline, bitsPerSecond, stepFrames] = playable(*sound);
    timeline_ = std::move(timeline);
    voice_.load(std::move(source), timeline_.frames());
}

void SndfileControl::play()
{
    if (from_)
        voice_.seek(timeline_.frameAtMilliseconds(*from_));
    from_.reset();
    voice_.play();
}

void SndfileControl::close()
{
    from_.reset();
    timeline_ = {};
    voice_.load(nullptr, 0);
}

}

std::unique_ptr<MMControl> makeSndfileControl(SoundOutput& output, UnopenedFiles& unopened)
{
    return std::make_unique<SndfileControl>(output, unopened);
}

}
