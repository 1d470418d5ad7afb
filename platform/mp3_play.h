// SPDX-License-Identifier: GPL-3.0-or-later
// The MP3 engine: playing, tags, and decoding to WAV. Everything the program knows about it, it learns by
// asking.
#pragma once

#include "platform/event.h"
#include "platform/hearing.h"
#include "platform/text.h"

#include <cstdint>

class Mp3Play : public Hearing
{
public:
    virtual ~Mp3Play() = default;

    // Opens `path` for playing; with a non-empty `output`, for decoding into that WAV file. What was open is
    // silenced and replaced. 0 when open, and position, stream data and tag fields are fresh; anything else
    // may be a passing condition, and nothing is open then.
    virtual std::int16_t Open(const Text& path, const Text& output) = 0;

    // Harmless with nothing open. Forgets tag and file, unless fields were set since `Open` or just written.
    virtual void Close() = 0;

    // Starts, or continues after `Pause`; an opened decoding begins, as a job of its own. No effect while
    // playing.
    virtual void Play() = 0;

    // Halts at the position. Only `Play` continues; a second call has no effect.
    virtual void Pause() = 0;

    // Ends playing; the position is 0. Harmless when not playing or with nothing open.
    virtual void Stop() = 0;

    // Moves the play position to that frame, in the unit of `CurrentFrame`; held to the file's ends.
    virtual void Seek(std::int32_t frame) = 0;

    // The two output levels, 0 to 100, held to that range. No effect with nothing open.
    virtual void SetVolume(std::int16_t left, std::int16_t right) = 0;

    // 0 to 100; 0 with nothing open.
    virtual std::int16_t LeftVolume() const = 0;
    virtual std::int16_t RightVolume() const = 0;

    virtual std::int32_t Length() const = 0;    // milliseconds; 0 with nothing open
    virtual std::int32_t Bitrate() const = 0;   // bits per second; 0 with nothing open
    virtual std::int32_t Frequency() const = 0; // hertz; 0 with nothing open

    // The frame that is heard. A long file counts in groups of frames, so that the number fits.
    virtual std::int16_t CurrentFrame() const = 0;

    // Milliseconds that one step of `CurrentFrame` lasts; never 0.
    virtual float FrameDuration() const = 0;

    // Not 0 from `Play` on an open file until its last sample was heard, also in a pause.
    virtual std::int16_t IsPlaying() const = 0;

    // The tag of the open file, values set since included; each one line.
    virtual Text Title() const = 0;
    virtual Text Artist() const = 0;
    virtual Text Album() const = 0;
    virtual Text Comment() const = 0;
    virtual std::int16_t Year() const = 0;       // 0: no year
    virtual std::int16_t GenreIndex() const = 0; // the ID3v1 number; -1: no genre, or one without a number
    virtual void setTitle(const Text& title) = 0;
    virtual void setArtist(const Text& artist) = 0;
    virtual void setAlbum(const Text& album) = 0;
    virtual void setComment(const Text& comment) = 0;
    virtual void setYear(std::int16_t year) = 0;
    virtual void setGenreIndex(std::int16_t genre) = 0;

    // The text of a genre number; for -1 the open file's genre without a number, or "". Never fails.
    virtual Text GenreName(std::int16_t genre) const = 0;

    // Writes the tag fields to their file, also after the `Close` behind their setting. A failure, also that
    // there is no file, is told to the desktop.
    virtual void WriteTag() = 0;

    // The length of an opened decoding in the unit of `Progress`, thousandths; 0 with none open.
    virtual std::int32_t DecodeLength() const = 0;

    Event<std::int32_t> Progress; // how far the running decoding is, in the unit of `DecodeLength`
    Event<> Done;                 // exactly once for each decoding that `Play` started, also a failed one
};
