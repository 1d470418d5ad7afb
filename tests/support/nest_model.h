// SPDX-License-Identifier: GPL-3.0-or-later
// What a listener and a reader of the windows should find, whatever commands were given in whatever waits.
// Told without recursion: a stack of jobs stands for the handlers that have not come back.
#pragma once

#include "platform/text.h"

#include <set>
#include <vector>

class NestModel
{
public:
    std::vector<Text> rows;
    int selected = -1;
    bool stopFlag = false;
    int runIndex = 0, playIndex = 0;
    Text file;
    int kind = 0;
    bool pauseFlag = false, pauseEnabled = false;
    Text mp3File, wavFile;
    bool mp3Plays = false, mp3Paused = false, wavPlays = false;
    std::set<Text> absent;

    // The playlist window's commands.
    void play() { give({stopping, playingFromSelected}); }
    void start() { startRun(0); }
    void next() { give({stopping, startingNext}); }
    void previous() { give({stopping, startingPrevious}); }
    void menuPrevious() { give({stopping, stopping, startingPrevious}); }
    void stop() { give({stopping}); }
    void playSelected() { give({stopping, playingSelected}); }
    void doubleClick() { give({stopping, playingClicked}); }

    // The main window's.
    void mainPlay()
    {
        pauseEnabled = true;
        if (file.empty())
            return;
        if (kind != 2) {
            continueOrStartWav();
            return;
        }
        if (!pauseFlag)
            tryFile();
        pauseFlag = false;
        soundMp3();
    }
    void mainPause()
    {
        if (!pauseEnabled)
            return;
        pauseFlag = !pauseFlag;
        if (kind != 2)
            wavPlays = !pauseFlag && !wavFile.empty();
        else if (pauseFlag)
            mp3Paused = mp3Plays;
        else
            soundMp3();
    }
    void mainStop()
    {
        stopFlag = true;
        silence();
        give(kind == 2 ? Jobs{tryingFile, disablingPause, endingPause} : Jobs{disablingPause, endingPause});
    }

    // The list's own.
    void add(const Text& row) { rows.push_back(row); }
    void clear()
    {
        rows.clear();
        selected = -1;
    }
    void remove()
    {
        if (selected < 0)
            return;
        rows.erase(rows.begin() + selected);
        selected = -1;
    }
    void move(int by)
    {
        const int target = selected + by;
        if (selected < 0 || target < 0 || target >= count())
            return;
        std::swap(rows[static_cast<std::size_t>(selected)], rows[static_cast<std::size_t>(target)]);
        selected = target;
    }

    void trackEnds()
    {
        if (!mp3Paused)
            mp3Plays = false;
    }

    // After each act: everything that can go on goes on, until a handler waits or none is left.
    void settle()
    {
        while (!jobs_.empty()) {
            const Job job = jobs_.back();
            jobs_.pop_back();
            if (!done(job)) {
                jobs_.push_back(job);
                jobs_.back().waits = true;
                return;
            }
        }
    }

    // How many handlers wait inside each other.
    int depth() const
    {
        int waiting = 0;
        for (const auto& job : jobs_)
            waiting += job.waits;
        return waiting;
    }

private:
    enum What {
        stopping,
        tryingFile,
        disablingPause,
        endingPause,
        soundingMp3,
        startingRun,
        startingRow,
        startingFile,
        awaitingBegin,
        awaitingEnd,
        leavingRow,
        startingNext,
        startingPrevious,
        playingFromSelected,
        playingSelected,
        playingClicked,
    };
    using Jobs = std::vector<What>;

    struct Job {
        What what;
        int number = 0; // of a run: its first row, later its last
        bool waits = false;
    };

    int count() const { return static_cast<int>(rows.size()); }
    Text rowAt(int row) const { return row >= 0 && row < count() ? rows[static_cast<std::size_t>(row)] : ""; }

    static int kindOf(const Text& row, bool anyCase)
    {
        Text letters = row.size() < 3 ? row : row.substr(row.size() - 3);
        for (char& letter : letters)
            letter = anyCase && letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
        return letters == "mp3" ? 2 : 1;
    }

    // The first is done first.
    void give(const Jobs& jobs, int number = 0)
    {
        for (auto job = jobs.rbegin(); job != jobs.rend(); ++job)
            jobs_.push_back({*job, number});
    }
    void startRun(int row) { give({startingRun}, row); }

    void silence()
    {
        if (kind == 2)
            mp3Plays = mp3Paused = false, mp3File.clear();
        else
            wavPlays = false, wavFile.clear();
    }
    void soundMp3()
    {
        mp3Plays = !mp3File.empty();
        mp3Paused = false;
    }
    bool tryFile()
    {
        mp3Plays = mp3Paused = false;
        mp3File = file.empty() || absent.contains(file) ? "" : file;
        return !mp3File.empty();
    }
    void continueOrStartWav()
    {
        if (!pauseFlag)
            wavFile = file;
        pauseFlag = false;
        wavPlays = !wavFile.empty();
    }
    void playAlone(bool anyCase)
    {
        file = rowAt(selected);
        kind = kindOf(file, anyCase);
        give({startingFile});
    }

    // False: it has to wait, and is asked again later.
    bool done(const Job& job)
    {
        switch (job.what) {
        case stopping:
            stopFlag = true;
            silence();
            give(kind == 2 ? Jobs{tryingFile, disablingPause} : Jobs{disablingPause});
            return true;
        case tryingFile:
            return tryFile();
        case disablingPause:
            pauseEnabled = false;
            return true;
        case endingPause:
            pauseFlag = false;
            return true;
        case soundingMp3:
            soundMp3();
            return true;
        case startingRun:
            stopFlag = false;
            runIndex = job.number;
            give({startingRow}, count() - 1);
            return true;
        case startingRow:
            if (runIndex > job.number)
                return true;
            file = rowAt(runIndex);
            kind = kindOf(file, true);
            if (runIndex < count())
                selected = runIndex;
            playIndex = runIndex;
            give({startingFile, awaitingBegin, awaitingEnd, leavingRow}, job.number);
            return true;
        case startingFile:
            mp3Plays = mp3Paused = wavPlays = false;
            mp3File.clear();
            wavFile.clear();
            pauseEnabled = true;
            if (kind == 2 && !pauseFlag)
                give({tryingFile, soundingMp3});
            else if (kind == 2)
                pauseFlag = false;
            else
                continueOrStartWav();
            return true;
        case awaitingBegin:
            return mp3Plays;
        case awaitingEnd:
            return !mp3Plays;
        case leavingRow:
            if (stopFlag || runIndex == count() - 1)
                return true;
            ++runIndex;
            give({startingRow}, job.number);
            return true;
        case startingNext:
            if (playIndex < count() - 1)
                startRun(playIndex + 1);
            return true;
        case startingPrevious:
            if (playIndex > 0)
                startRun(playIndex - 1);
            return true;
        case playingFromSelected:
            startRun(selected < 0 ? 0 : selected);
            return true;
        case playingSelected:
            if (selected >= 0)
                playAlone(false);
            return true;
        case playingClicked:
            playAlone(true);
            return true;
        }
        return true;
    }

    std::vector<Job> jobs_;
};
