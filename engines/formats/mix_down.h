// How many channels become two.
#pragma once

#include <vector>

namespace formats
{

struct MixWeights {
    float left = 0;
    float right = 0;
};

// One row for each of `channels` in the order of a WAV file (front left, front right, centre, bass, then
// pairs). Centre and surround go in at -3 dB and the bass channel is left out, as ITU-R BS.775 has it; each
// side adds up to 1, so that nothing clips.
std::vector<MixWeights> mixDown(int channels);

}
