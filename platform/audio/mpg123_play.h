// The MP3 engine on libmpg123. WAV files play, too, as files without tags.
#pragma once

#include "platform/mp3_play.h"

#include <memory>

class Post;
class Shell;
class SoundOutput;

// `post` wakes the window thread when a file has been heard to its end. Nothing is started before something
// plays.
std::unique_ptr<Mp3Play> makeMpg123Play(SoundOutput& output, Post& post, Shell& shell);
