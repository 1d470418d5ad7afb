// SPDX-License-Identifier: GPL-3.0-or-later
// What a flow under fire stands on: a user's folders, the program's own, and a desktop that says what it is
// told.
#pragma once

#include "files/folders.h"
#include "files/state_part_notes.h"
#include "platform/activity.h"
#include "platform/failure.h"
#include "platform/shell.h"

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <unistd.h>

struct Places {
    explicit Places(Text folder) : home(std::move(folder)) {}

    Text home;
    Text music = home + "/Music";
    Text output = home + "/output";
    Text state = home + "/state";
    Text config = home + "/config";
    Text cache = home + "/cache";
    Text application = home + "/app";
};

// A line each, for who looks at the run: "found" by a start, "told" to the user.
inline void say(const char* what, const Text& words)
{
    std::printf("%s %s\n", what, words.c_str());
    std::fflush(stdout);
}

class SpokenShell final : public Shell
{
public:
    void startProgram(const Text&) override {}
    void notify(const Text& title, const Text& message) override { say("told", title + ": " + message); }
};

class NoActivity final : public Activity
{
public:
    void begin() override {}
    void end() override {}
};

// The program from its start: what the last run noted is settled first.
struct Ground {
    explicit Ground(const Text& home) : places(home) { files::removeNotedParts(places.state); }

    Places places;
    SpokenShell shell;
    std::shared_ptr<files::StatePartNotes> notes = std::make_shared<files::StatePartNotes>(places.state);
};

// A flow: what stands before it, and what a person does. `run` leaves out what nobody would do once more.
struct Flow {
    const char* name;
    void (*furnish)(const Places& places);
    void (*run)(Ground& ground);
};

using Flows = std::initializer_list<Flow>;

// FLOW FOLDER [furnish]. What fails where no handler is, is told in a box, and ends the program.
inline int runFlow(std::initializer_list<Flows> all, int argc, char** argv)
{
    for (const Flows& flows : all)
        for (const Flow& flow : flows) {
            if (argc < 3 || Text(argv[1]) != flow.name)
                continue;
            if (argc > 3) {
                flow.furnish(Places(argv[2]));
                _exit(0);
            }
            Ground ground(argv[2]);
            guarded([](const Failure& failure) { say("told", failure.description); },
                    [&] { flow.run(ground); });
            _exit(0);
        }
    std::fprintf(stderr, "FLOW FOLDER [furnish]\n");
    return 2;
}
