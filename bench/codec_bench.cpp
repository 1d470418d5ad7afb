// SPDX-License-Identifier: GPL-3.0-or-later
// Makes, encodes and decodes one file, for a bench that measures it from outside.
#include "engines/codec/decode_file.h"
#include "engines/codec/encode_file.h"
#include "platform/failure.h"
#include "tests/support/wav_files.h"

#include <cstdlib>
#include <iostream>
#include <string_view>
#include <vector>

namespace
{

constexpr std::string_view usage = "codec_bench music SECONDS RATE OUT.wav\n"
                                   "codec_bench encode IN.wav OUT.mp3 KILOBITS full|half WORKERS\n"
                                   "codec_bench decode IN.mp3 OUT.wav WORKERS\n";

bool run(const std::vector<Text>& words)
{
    const auto number = [&](std::size_t at) { return std::atoi(words[at].c_str()); };
    if (words.size() == 4 && words[0] == "music")
        putPcmWav(words[3], music(std::int64_t{number(1)} * number(2), number(2)));
    else if (words.size() == 6 && words[0] == "encode")
        codec::encodeFile(words[1], words[2], {number(3) * 1000, words[4] == "half"},
                          static_cast<unsigned>(number(5)));
    else if (words.size() == 4 && words[0] == "decode")
        codec::decodeFile(words[1], words[2], static_cast<unsigned>(number(3)));
    else
        return false;
    return true;
}

}

int main(int argc, char** argv)
{
    bool isKnown = true;
    const bool isDone = guarded([](const Failure& failure) { std::cerr << failure.description << '\n'; },
                                [&] {
                                    isKnown = run({argv + 1, argv + argc});
                                });
    if (!isKnown)
        std::cerr << usage;
    return isDone && isKnown ? 0 : 1;
}
