// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 files of several encoders, rates and states of health.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"
#include "tests/support/wav_files.h"

#include <random>
#include <stdexcept>
#include <vector>

struct ZooFile {
    Text what;
    Text path;
};

class Mp3Zoo
{
public:
    // A sound encoded by another program. `arguments` follow its name; "IN" and "OUT" stand for the files.
    Text made(const Text& what, const Pcm& pcm, std::vector<Text> arguments)
    {
        const Text wav = putPcmWav(folder_ / "source.wav", pcm);
        const Text mp3 = path(what);
        for (auto& argument : arguments)
            argument = argument == "IN" ? wav : argument == "OUT" ? mp3 : argument;
        const auto result = runTool(arguments);
        if (result.status != 0)
            throw std::runtime_error(arguments.front() + " failed: " + result.words);
        return add(what, mp3);
    }

    Text put(const Text& what, std::string_view bytes)
    {
        putFile(path(what), bytes);
        return add(what, path(what));
    }

    const std::vector<ZooFile>& files() const { return files_; }
    Text operator/(std::string_view name) const { return folder_ / name; }

private:
    Text path(const Text& what) const { return folder_ / (what + ".mp3"); }

    Text add(const Text& what, const Text& mp3)
    {
        files_.push_back({what, mp3});
        return mp3;
    }

    TemporaryFolder folder_;
    std::vector<ZooFile> files_;
};

inline Text lameRate(int rate)
{
    return std::to_string(rate / 1000) + "." + std::to_string(rate % 1000 / 10);
}

// At every rate that the format has, mono and stereo: constant, average and variable bit rate by lame, and
// what ffmpeg makes. Either all of them or one of the four in turn.
inline void fillHealthy(Mp3Zoo& zoo, std::int64_t seconds, bool all)
{
    int turn = 0;
    for (const int rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000})
        for (const int channels : {1, 2}) {
            const Text kilobits = rate < 32000 ? "32" : "96";
            const std::pair<Text, std::vector<Text>> encoders[] = {
                {"constant", {"lame", "--quiet", "-b", kilobits, "--resample", lameRate(rate), "IN", "OUT"}},
                {"ffmpeg", {"ffmpeg", "-v", "error", "-i", "IN", "-b:a", "64k", "OUT"}},
                {"variable", {"lame", "--quiet", "-V", "4", "--resample", lameRate(rate), "IN", "OUT"}},
                {"average", {"lame", "--quiet", "--abr", "45", "--resample", lameRate(rate), "IN", "OUT"}},
            };
            const Pcm pcm = music(seconds * rate, rate, channels, static_cast<unsigned>(rate + channels));
            const Text name = std::to_string(rate) + (channels == 1 ? " mono " : " stereo ");
            for (const auto& [kind, arguments] : encoders)
                if (all || &arguments == &encoders[turn % 4].second)
                    zoo.made(name + kind, pcm, arguments);
            ++turn;
        }
}

// Bits turned, bytes lost, pieces cut out of the middle, the end missing.
inline void fillDamaged(Mp3Zoo& zoo, const std::vector<Text>& healthy, int count)
{
    std::minstd_rand random(5);
    const auto upTo = [&](std::size_t limit) { return random() % std::max<std::size_t>(limit, 1); };
    for (int i = 0; i < count; ++i) {
        Text bytes = healthy[static_cast<std::size_t>(i) % healthy.size()];
        const auto at = 1000 + upTo(bytes.size() - 2000);
        const Text number = " " + std::to_string(i);
        switch (i % 5) {
        case 0:
            for (std::size_t turned = upTo(30) + 1; turned > 0; --turned)
                bytes[1000 + upTo(bytes.size() - 1000)] ^= static_cast<char>(1 << upTo(8));
            zoo.put("turned bits" + number, bytes);
            break;
        case 1:
            zoo.put("lost bytes" + number, bytes.erase(at, upTo(700)));
            break;
        case 2:
            zoo.put("foreign bytes" + number,
                    bytes.insert(at, Text(upTo(900), static_cast<char>(upTo(255)))));
            break;
        case 3:
            zoo.put("lost beginning" + number, bytes.substr(at));
            break;
        default:
            zoo.put("lost end" + number, bytes.substr(0, at));
        }
    }
}
