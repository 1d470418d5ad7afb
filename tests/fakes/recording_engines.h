// SPDX-License-Identifier: GPL-3.0-or-later
// Engines that do nothing but say what they were asked for, and answer what a test tells them to.
#pragma once

#include "fakes/call_log.h"
#include "platform/acd.h"
#include "platform/acd_write.h"
#include "platform/cd_base.h"
#include "platform/failure.h"
#include "platform/media_remote.h"
#include "platform/mm_control.h"
#include "platform/mp3_enc.h"
#include "platform/mp3_play.h"
#include "platform/numbers.h"

#include <deque>
#include <functional>
#include <map>

class RecordingMp3Play final : public Mp3Play
{
public:
    RecordingMp3Play(CallLog& log, Text name) : log_(log), name_(std::move(name)) {}
    ~RecordingMp3Play() override;

    // Asked at each `Open`, first one first; when they run out, 0.
    std::deque<std::int16_t> openResults;
    std::function<void()> onPlay;
    std::function<void(const Text&)> onCall;     // each call, before it is answered
    std::function<void(const Text&)> onQuestion; // length, artist and title asked for
    std::function<std::int16_t()> isPlaying = [] { return std::int16_t{0}; };

    bool isOpen = false;
    std::int32_t length = 0, bitrate = 0, frequency = 0;
    std::int16_t currentFrame = 0;
    float frameDuration = 26.122F;
    std::int16_t left = 0, right = 0;
    Text title, artist, album, comment;
    std::int16_t year = 0, genreIndex = -1;
    std::int32_t decodeLength = 0;
    State heard = State::idle;
    std::int32_t heardAt = 0; // milliseconds

    std::int16_t Open(const Text& path, const Text& output) override
    {
        say("Open(" + path + (output.empty() ? "" : ", " + output) + ")");
        std::int16_t result = 0;
        if (!openResults.empty()) {
            result = openResults.front();
            openResults.pop_front();
        }
        isOpen = result == 0;
        return result;
    }
    void Close() override
    {
        say("Close");
        isOpen = false;
    }
    void Play() override
    {
        say("Play");
        if (onPlay)
            onPlay();
    }
    void Pause() override { say("Pause"); }
    void Stop() override { say("Stop"); }
    void Seek(std::int32_t frame) override { say("Seek(" + textOf(frame) + ")"); }
    void SetVolume(std::int16_t l, std::int16_t r) override
    {
        say("SetVolume(" + textOf(l) + ", " + textOf(r) + ")");
    }
    std::int16_t LeftVolume() const override
    {
        say("LeftVolume");
        return left;
    }
    std::int16_t RightVolume() const override
    {
        say("RightVolume");
        return right;
    }
    std::int32_t Length() const override { return asked("Length", length); }
    std::int32_t Bitrate() const override { return bitrate; }
    std::int32_t Frequency() const override { return frequency; }
    std::int16_t CurrentFrame() const override { return currentFrame; }
    float FrameDuration() const override { return frameDuration; }
    std::int16_t IsPlaying() const override { return isPlaying(); }
    Text Title() const override { return asked("Title", title); }
    Text Artist() const override { return asked("Artist", artist); }
    Text Album() const override { return album; }
    Text Comment() const override { return comment; }
    std::int16_t Year() const override { return year; }
    std::int16_t GenreIndex() const override { return genreIndex; }
    void setTitle(const Text& v) override { say("Title = " + (title = v)); }
    void setArtist(const Text& v) override { say("Artist = " + (artist = v)); }
    void setAlbum(const Text& v) override { say("Album = " + (album = v)); }
    void setComment(const Text& v) override { say("Comment = " + (comment = v)); }
    void setYear(std::int16_t v) override { say("Year = " + textOf(year = v)); }
    void setGenreIndex(std::int16_t v) override { say("GenreIndex = " + textOf(genreIndex = v)); }
    Text GenreName(std::int16_t genre) const override { return genre < 0 ? "" : "Genre " + textOf(genre); }
    void WriteTag() override { say("WriteTag"); }
    std::int32_t DecodeLength() const override { return decodeLength; }
    State state() const override { return heard; }
    std::int32_t place() const override { return heardAt; }

private:
    void say(const Text& call) const
    {
        log_.add(name_ + "." + call);
        if (onCall)
            onCall(call);
    }

    template <typename Answer>
    Answer asked(const char* question, const Answer& answer) const
    {
        if (onQuestion)
            onQuestion(question);
        return answer;
    }

    CallLog& log_;
    Text name_;
};

class RecordingMMControl final : public MMControl
{
public:
    explicit RecordingMMControl(CallLog& log) : log_(log) {}
    ~RecordingMMControl() override;

    std::int32_t length = 0, position = 0;
    State heard = State::idle;
    std::function<void(const Text&)> onCall;

    void setDeviceType(const Text& deviceType) override { say("DeviceType = " + deviceType); }
    void setFileName(const Text& path) override { say("FileName = " + path); }
    void setCommand(const Text& word) override { say(word); }
    std::int32_t Length() const override { return length; }
    std::int32_t Position() const override { return position; }
    void setFrom(std::int32_t from) override { say("From = " + textOf(from)); }
    State state() const override { return heard; }
    std::int32_t place() const override { return position; }

private:
    void say(const Text& call) const
    {
        log_.add("MMControl1." + call);
        if (onCall)
            onCall(call);
    }

    CallLog& log_;
};

class RecordingMp3Enc final : public Mp3Enc
{
public:
    explicit RecordingMp3Enc(CallLog& log) : log_(log) {}
    ~RecordingMp3Enc() override;

    std::int32_t bitrate = 0, length = 0;
    std::function<void()> onStart;

    std::int32_t Bitrate() const override { return bitrate; }
    void setBitrate(std::int32_t v) override { say("Bitrate = " + textOf(bitrate = v)); }
    void setBitrate(const Text& v) override { setBitrate(toInteger32(v)); }
    void setHalfSampleRate(bool half) override
    {
        say(half ? "HalfSampleRate = True" : "HalfSampleRate = False");
    }
    std::int16_t Open(const Text& input, const Text& output) override
    {
        say("Open(" + input + ", " + output + ")");
        return 0;
    }
    void Start() override
    {
        say("Start");
        if (onStart)
            onStart();
    }
    std::int32_t Length() const override { return length; }

private:
    void say(const Text& call) const { log_.add("Mp3Encoder1." + call); }

    CallLog& log_;
};

class RecordingACD final : public ACD
{
public:
    explicit RecordingACD(CallLog& log) : log_(log) {}
    ~RecordingACD() override;

    std::int16_t init = 0;
    std::vector<Text> drives{"Drive one", "Drive two"};
    std::vector<std::int32_t> tracks; // milliseconds
    std::int16_t readResult = 0;
    std::function<void()> onRead;

    std::int16_t Init() override
    {
        say("Init");
        return init;
    }
    std::int16_t DriveCount() override
    {
        say("DriveCount");
        return static_cast<std::int16_t>(drives.size());
    }
    Text DriveName(std::int16_t drive) const override
    {
        say("DriveName(" + textOf(drive) + ")");
        return drives.at(static_cast<std::size_t>(drive - 1));
    }
    void SelectDrive(std::int16_t drive) override { say("SelectDrive(" + textOf(drive) + ")"); }
    std::int16_t TrackCount() override
    {
        say("TrackCount");
        return static_cast<std::int16_t>(tracks.size());
    }
    std::int32_t TrackLength(std::int16_t track) override
    {
        say("TrackLength(" + textOf(track) + ")");
        const auto index = static_cast<std::size_t>(track - 1);
        return index < tracks.size() ? tracks[index] : 0;
    }
    std::int16_t ReadTrack(std::int16_t track, const Text& path) override
    {
        say("ReadTrack(" + textOf(track) + ", " + path + ")");
        if (onRead)
            onRead();
        return readResult;
    }
    void Stop() override { say("Stop"); }

private:
    void say(const Text& call) const { log_.add("CDtoWAV." + call); }

    CallLog& log_;
};

class RecordingACDWRITE final : public ACDWRITE
{
public:
    explicit RecordingACDWRITE(CallLog& log) : log_(log) {}
    ~RecordingACDWRITE() override;

    struct Writer {
        Text name;
        std::int16_t type;
    };
    std::int16_t init = 0;
    std::vector<Writer> writers;
    std::int16_t current = 0, speed = 0, writeResult = 0;
    std::deque<std::int16_t> mediaResults; // when they run out, 0
    std::vector<Text> refused;

    std::int16_t Init() override
    {
        say("Init");
        return init;
    }
    std::int16_t DriveCount() override
    {
        say("DriveCount");
        return static_cast<std::int16_t>(writers.size());
    }
    Text DriveName(std::int16_t drive) override
    {
        say("DriveName(" + textOf(drive) + ")");
        return writers.at(static_cast<std::size_t>(drive)).name;
    }
    void SelectDrive(std::int16_t drive) override
    {
        say("SelectDrive(" + textOf(drive) + ")");
        current = drive;
    }
    std::int16_t WriterType() const override
    {
        say("WriterType");
        const auto index = static_cast<std::size_t>(current);
        return index < writers.size() ? writers[index].type : std::int16_t{0};
    }
    void SetWriterType(std::int16_t type) override { say("SetWriterType(" + textOf(type) + ")"); }
    std::int16_t WriteSpeed() const override { return speed; }
    void setWriteSpeed(std::int16_t factor) override { say("WriteSpeed = " + textOf(speed = factor)); }
    void setWriteSpeed(const Text& factor) override { setWriteSpeed(toInteger16(factor)); }
    void setCloseDisc(bool v) override { say(v ? "CloseDisc = True" : "CloseDisc = False"); }
    void setSimulate(bool v) override { say(v ? "Simulate = True" : "Simulate = False"); }
    void setAutoEject(bool v) override { say(v ? "AutoEject = True" : "AutoEject = False"); }
    std::int16_t AddTrack(const Text& path, std::int32_t unused) override
    {
        say("AddTrack(" + path + ", " + textOf(unused) + ")");
        return std::find(refused.begin(), refused.end(), path) == refused.end() ? std::int16_t{0}
                                                                                : std::int16_t{1};
    }
    void ClearTracks() override { say("ClearTracks"); }
    std::int16_t CheckMedia() override
    {
        say("CheckMedia");
        if (mediaResults.empty())
            return 0;
        const auto result = mediaResults.front();
        mediaResults.pop_front();
        return result;
    }
    std::int16_t Write() override
    {
        say("Write");
        return writeResult;
    }

private:
    void say(const Text& call) const { log_.add("CDWriter." + call); }

    CallLog& log_;
};

class RecordingCdBase final : public CdBase
{
public:
    explicit RecordingCdBase(CallLog& log) : log_(log) {}
    ~RecordingCdBase() override;

    bool openFails = false;
    Text identity;
    Text artist;
    std::map<std::int16_t, Text> titles;

    void setContactIdentity(const Text& address) override
    {
        say("ContactIdentity = " + (identity = address));
    }
    Text DefaultDevice() const override { return "default"; }
    void setDevice(const Text& device) override { say("Device = " + device); }
    void setTimeLimit(std::int32_t milliseconds) override { say("TimeLimit = " + textOf(milliseconds)); }
    void setCommand(const Text& word) override
    {
        say("Command = " + word);
        if (openFails)
            throw Failure(Trouble::deviceUnavailable);
    }
    void Lookup() override { say("Lookup"); }
    Text DiscArtist() const override { return artist; }
    Text TrackTitle(std::int16_t track) const override
    {
        say("TrackTitle(" + textOf(track) + ")");
        const auto title = titles.find(track);
        return title == titles.end() ? Text() : title->second;
    }

private:
    void say(const Text& call) const { log_.add("CdBase1." + call); }

    CallLog& log_;
};

class RecordingRemote final : public MediaRemote
{
public:
    ~RecordingRemote() override;

    Shown shown;
    std::int32_t place = 0;
    std::vector<std::int32_t> jumps;

    void show(const Shown& now, std::int32_t at) override
    {
        shown = now;
        place = at;
    }
    void jumped(std::int32_t to) override { jumps.push_back(to); }
};
