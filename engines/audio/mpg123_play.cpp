// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/mpg123_play.h"

#include "engines/audio/opened_sound.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/thinned_source.h"
#include "engines/audio/unopened_files.h"
#include "engines/audio/voice.h"
#include "engines/codec/decode_jobs.h"
#include "engines/tags/edited_tag.h"
#include "engines/tags/genre.h"
#include "files/file_to_open.h"
#include "platform/mutex.h"
#include "platform/post.h"
#include "platform/shell.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace audio
{

namespace
{

constexpr std::int16_t opened = 0;
constexpr std::int16_t notOpened = 1;

constexpr float usualFrameDuration = 26.122F; // of the usual rate, where there is no file to ask

constexpr std::int64_t mostSteps = std::numeric_limits<std::int16_t>::max();

// What opening a file came to.
struct OpenedFile {
    Text path;
    bool isMp3 = false;
    std::optional<OpenedSound> sound;
};

OpenedFile openedFile(const Text& path)
{
    if (auto sound = openMp3Sound(path))
        return {path, true, playable(*std::move(sound))};
    if (auto sound = openWavSound(path))
        return {path, false, playable(*std::move(sound))};
    return {path, false, std::nullopt};
}

// A file that took longer to open than its caller waits: the next try finds it here. From any thread.
class LateFile
{
public:
    void keep(const Text& asked, OpenedFile file)
    {
        const Lock lock(mutex_);
        late_.emplace(asked, std::move(file));
    }

    // Once, and only for who asks for the same.
    std::optional<OpenedFile> take(const Text& asked)
    {
        const Lock lock(mutex_);
        const auto late = std::exchange(late_, std::nullopt);
        return late && late->first == asked ? std::optional(late->second) : std::nullopt;
    }

private:
    Mutex mutex_;
    std::optional<std::pair<Text, OpenedFile>> late_ GUARDED_BY(mutex_);
};

class Mpg123Play final : public Mp3Play
{
public:
    Mpg123Play(SoundOutput& output, Post& post, Shell& shell, PartNotes& notes, UnopenedFiles& unopened,
               Text levelsFile);

    std::int16_t Open(const Text& path, const Text& output) override;
    void Close() override;
    void Play() override;
    void Pause() override { voice_.pause(); }
    void Stop() override { voice_.stop(); }
    void Seek(std::int32_t frame) override;

    void SetVolume(std::int16_t left, std::int16_t right) override;
    std::int16_t LeftVolume() const override { return sound_ ? output_.levels().left : 0; }
    std::int16_t RightVolume() const override { return sound_ ? output_.levels().right : 0; }

    std::int32_t Length() const override;
    std::int32_t Bitrate() const override { return sound_ ? sound_->bitsPerSecond : 0; }
    std::int32_t Frequency() const override { return sound_ ? sound_->timeline.rate() : 0; }
    std::int16_t CurrentFrame() const override;
    float FrameDuration() const override;
    std::int16_t IsPlaying() const override { return voice_.isPlaying() ? 1 : 0; }

    Text Title() const override { return tag_.fields().title; }
    Text Artist() const override { return tag_.fields().artist; }
    Text Album() const override { return tag_.fields().album; }
    Text Comment() const override { return tag_.fields().comment; }
    std::int16_t Year() const override { return tag_.fields().year; }
    std::int16_t GenreIndex() const override { return tag_.fields().genreIndex; }
    void setTitle(const Text& title) override { tag_.change().title = title; }
    void setArtist(const Text& artist) override { tag_.change().artist = artist; }
    void setAlbum(const Text& album) override { tag_.change().album = album; }
    void setComment(const Text& comment) override { tag_.change().comment = comment; }
    void setYear(std::int16_t year) override { tag_.change().year = year; }
    void setGenreIndex(std::int16_t genre) override { tag_.change().genreIndex = genre; }
    Text GenreName(std::int16_t genre) const override;
    void WriteTag() override;

    std::int32_t DecodeLength() const override { return jobs_ ? jobs_->length() : 0; }

    State state() const override { return voice_.state(); }
    std::int32_t place() const override;

private:
    std::int16_t openDecoding(const Text& path, const Text& output);
    bool openSound(const Text& path);
    void unload();
    void keepTagOf(const Text& path);
    std::int64_t step() const;

    SoundOutput& output_;
    Post& post_;
    Shell& shell_;
    PartNotes& notes_;
    UnopenedFiles& unopened_;
    std::optional<OpenedSound> sound_;
    std::shared_ptr<LateFile> late_ = std::make_shared<LateFile>();
    Voice voice_;
    std::optional<codec::DecodeJobs> jobs_; // from the first decoding on
    bool isDecoding_ = false;

    Text levelsFile_;
    tags::EditedTag tag_;
};

Mpg123Play::Mpg123Play(SoundOutput& output, Post& post, Shell& shell, PartNotes& notes,
                       UnopenedFiles& unopened, Text levelsFile) :
    output_(output),
    post_(post), shell_(shell), notes_(notes), unopened_(unopened),
    voice_(output, PlaceAtEnd::rewinds, [&post] { post.post([] {}); }), levelsFile_(std::move(levelsFile)),
    tag_(notes)
{
}

std::int16_t Mpg123Play::Open(const Text& path, const Text& output)
{
    unload();
    isDecoding_ = !output.empty();
    if (isDecoding_)
        return openDecoding(path, output);
    if (!openSound(path)) {
        unopened_.failed(path, "MP3 or WAV");
        return notOpened;
    }
    unopened_.opened(path);
    return opened;
}

std::int16_t Mpg123Play::openDecoding(const Text& path, const Text& output)
{
    if (!jobs_)
        jobs_.emplace(
            post_, shell_,
            codec::DecodeJobs::DecodeEvents{[this](std::int32_t position) { Progress.raise(position); },
                                            [this] { Done.raise(); }},
            notes_);
    const std::int16_t status = jobs_->open(path, output);
    keepTagOf(status == opened ? jobs_->input() : "");
    return status;
}

bool Mpg123Play::openSound(const Text& path)
{
    auto file = late_->take(path);
    if (!file && !path.empty())
        file = files::answerOfFile<OpenedFile>(
            path, openedFile, [path, late = late_](OpenedFile each) { late->keep(path, std::move(each)); });
    keepTagOf(file && file->isMp3 ? file->path : "");
    if (!file || !file->sound)
        return false;
    sound_ = std::move(file->sound);
    voice_.load(sound_->source, sound_->timeline.frames());
    return true;
}

void Mpg123Play::unload()
{
    voice_.load(nullptr, 0);
    sound_.reset();
}

void Mpg123Play::Close()
{
    unload();
    late_->take("");
    tag_.close();
    isDecoding_ = false;
    if (jobs_)
        jobs_->close();
}

void Mpg123Play::Play()
{
    if (isDecoding_)
        jobs_->start();
    else
        voice_.play();
}

// MPEG frames in one step of `CurrentFrame`, in frames of sound: so many that the count fits into 16 bits.
std::int64_t Mpg123Play::step() const
{
    const std::int64_t frames = sound_->timeline.even(sound_->timeline.frames());
    const std::int64_t perGroup = mostSteps * sound_->stepFrames;
    const std::int64_t group = std::max<std::int64_t>((frames + perGroup - 1) / perGroup, 1);
    return group * sound_->stepFrames;
}

void Mpg123Play::Seek(std::int32_t frame)
{
    if (!sound_)
        return;
    const Timeline& timeline = sound_->timeline;
    const std::int64_t end = timeline.even(timeline.frames());
    voice_.seek(timeline.frameAtEven(std::min(std::max(frame, 0) * step(), end)));
}

void Mpg123Play::SetVolume(std::int16_t left, std::int16_t right)
{
    if (sound_)
        output_.setLevels({left, right});
}

std::int32_t Mpg123Play::Length() const
{
    return sound_ ? sound_->timeline.milliseconds(sound_->timeline.frames()) : 0;
}

std::int16_t Mpg123Play::CurrentFrame() const
{
    if (!sound_)
        return 0;
    const std::int64_t steps = sound_->timeline.even(voice_.position()) / step();
    return static_cast<std::int16_t>(std::min(steps, mostSteps));
}

std::int32_t Mpg123Play::place() const
{
    return sound_ ? sound_->timeline.milliseconds(voice_.position()) : 0;
}

float Mpg123Play::FrameDuration() const
{
    if (!sound_)
        return usualFrameDuration;
    return static_cast<float>(static_cast<double>(step()) * 1000 / sound_->timeline.rate());
}

void Mpg123Play::keepTagOf(const Text& path)
{
    if (path.empty())
        tag_.forget();
    else if (equalWithoutCase(path, levelsFile_)) // which its name in other letters leads to, too
        tag_.openForReading(path);
    else
        tag_.open(path);
}

// A genre without a number is asked for by none.
Text Mpg123Play::GenreName(std::int16_t genre) const
{
    return genre == -1 ? tag_.fields().genreName : tags::genreName(genre);
}

void Mpg123Play::WriteTag()
{
    const Text name = tag_.path().empty() ? "" : tag_.path() + ": ";
    const Text reason = tag_.write();
    if (!reason.empty())
        shell_.notify("The tag was not saved", name + reason);
}

}

std::unique_ptr<Mp3Play> makeMpg123Play(SoundOutput& output, Post& post, Shell& shell, PartNotes& notes,
                                        UnopenedFiles& unopened, const Text& levelsFile)
{
    return std::make_unique<Mpg123Play>(output, post, shell, notes, unopened, levelsFile);
}

}
