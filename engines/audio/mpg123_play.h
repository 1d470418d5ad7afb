// SPDX-License-Identifier: GPL-3.0-or-later
// The MP3 engine on libmpg123. WAV files play, too, as files without tags. Making one is cheap: its thread,
// and the sound server, wait for the first `Play`.
#pragma once

#include "platform/mp3_play.h"

#include <memory>

class PartNotes;
class Post;
class Shell;

namespace audio
{

class SoundOutput;
class UnopenedFiles;

// `post` wakes the window thread when a file has been heard to its end. `levelsFile` is the file that the
// program opens to ask for the levels: no tag is written into it. What is given outlives the engine.
std::unique_ptr<Mp3Play> makeMpg123Play(SoundOutput& output, Post& post, Shell& shell, PartNotes& notes,
                                        UnopenedFiles& unopened, const Text& levelsFile = {});

}
