// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a second of silence as an MP3 file: the program opens it whenever it needs the engine's levels and
// no music file is open.
#include <array>
#include <fstream>
#include <iostream>
#include <lame/lame.h>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: make_silence FILE\n";
        return 2;
    }
    constexpr int rate = 44100;
    lame_t encoder = lame_init();
    lame_set_in_samplerate(encoder, rate);
    lame_set_num_channels(encoder, 2);
    lame_set_brate(encoder, 32);
    lame_set_bWriteVbrTag(encoder, 0);
    lame_init_params(encoder);

    std::vector<short> silence(2 * rate, 0);
    std::vector<unsigned char> bytes(1 << 17);
    int count = lame_encode_buffer_interleaved(encoder, silence.data(), rate, bytes.data(),
                                               static_cast<int>(bytes.size()));
    count += lame_encode_flush(encoder, bytes.data() + count, static_cast<int>(bytes.size()) - count);
    lame_close(encoder);

    std::ofstream file(argv[1], std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), count);
    return file.flush() ? 0 : 1;
}
