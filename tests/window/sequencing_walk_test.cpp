// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_program.h"
#include "support/nest_model.h"
#include "support/simulated_sound.h"

#include <doctest/doctest.h>
#include <random>
#include <sstream>

namespace
{

struct WalkIsOver {
};

// A user who does anything at any time, in and out of waits, and a model that says what should come of it.
class Walk
{
public:
    explicit Walk(unsigned seed) : random_(seed), start_(), sound_(start_.platform) { expectNextStep(); }

    int deepest() const { return deepest_; }
    int done() const { return done_; }

    // Empty when the program did what the model says at each of `acts` acts.
    Text differs(int acts)
    {
        left_ = acts;
        try {
            while (true)
                step();
        } catch (const WalkIsOver&) {
        }
        return difference_;
    }

private:
    struct Act {
        Text name;
        int weight;
        std::function<void()> program;
        std::function<void()> model;
    };

    // Each turn of the pump is one more step of the walk.
    void expectNextStep()
    {
        start_.platform.scriptedPump.steps = {[this] {
            ++depth_;
            expectNextStep();
            step();
            --depth_;
        }};
    }

    void step()
    {
        compare();
        if (left_-- == 0 || !difference_.empty())
            throw WalkIsOver();
        start_.platform.log.clear();
        const Act& act = chosen();
        last_ = act.name;
        ++done_;
        act.model();
        model_.settle();
        act.program();
    }

    void compare()
    {
        deepest_ = std::max(deepest_, depth_);
        const Text is = found(), should = expected();
        if (is != should && difference_.empty())
            difference_ = "after act " + std::to_string(done_) + ", " + last_ + ":\n  the program " + is +
                          "\n  the model   " + should;
    }

    const Act& chosen()
    {
        int all = 0;
        for (const auto& act : acts_)
            all += act.weight;
        int at = below(all);
        for (const auto& act : acts_)
            if ((at -= act.weight) < 0)
                return act;
        return acts_.back();
    }

    int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }

    // A row or none; a name of a few.
    int anyRow() { return below(static_cast<int>(model_.rows.size()) + 1) - 1; }
    Text anyName()
    {
        const Text names[] = {"/m/a.mp3", "/m/b.mp3", "/m/c.mp3",    "/m/d.MP3",
                              "/m/e.mp3", "/m/f.wav", "/stick/g.mp3"};
        return names[below(std::size(names))];
    }

    void addRow()
    {
        start_.willChoose({newName_}, 1);
        start_.list.GoDoAddSongs();
    }
    void plug(std::set<Text>& absent) const
    {
        if (plugged_)
            absent.clear();
        else
            absent = {"/stick/g.mp3"};
    }

    Text found() const
    {
        const auto& list = start_.list;
        const auto& player = start_.player;
        return described(start_.rows(), list.PlayListLB.ListIndex(), list.labtemp1.Caption(), list.RunIndex,
                         list.PlayIndex, player.mp3filename.Caption(), player.OpenSaveDialog1->FilterIndex(),
                         player.paused_flag, player.Image3.Enabled(), sound_.mp3File, sound_.mp3Plays,
                         sound_.mp3Paused, sound_.wavFile, sound_.wavPlays, depth_);
    }
    Text expected() const
    {
        const NestModel& m = model_;
        return described(m.rows, m.selected, m.stopFlag ? "1" : "0", m.runIndex, m.playIndex, m.file, m.kind,
                         m.pauseFlag, m.pauseEnabled, m.mp3File, m.mp3Plays, m.mp3Paused, m.wavFile,
                         m.wavPlays, m.depth());
    }

    template <typename... Values>
    static Text described(const std::vector<Text>& rows, const Values&... values)
    {
        std::ostringstream text;
        for (const auto& row : rows)
            text << row << ' ';
        ((text << "| " << values << ' '), ...);
        return text.str();
    }

    std::mt19937 random_;
    ListProgram start_;
    SimulatedSound sound_;
    NestModel model_;
    Text newName_, last_ = "the start", difference_;
    bool plugged_ = true;
    int target_ = -1, left_ = 0, done_ = 0, depth_ = 0, deepest_ = 0;

    PlayListEditor& list_ = start_.list;
    StartUp& player_ = start_.player;

    const std::vector<Act> acts_{
        {"play", 4, [this] { list_.Playimg1.Click.raise(); }, [this] { model_.play(); }},
        {"menu Play From Selected", 1, [this] { list_.cP->Click.raise(playFrom_); },
         [this] { model_.play(); }},
        {"menu Start", 2, [this] { list_.cP->Click.raise(startItem_); }, [this] { model_.start(); }},
        {"next", 5, [this] { list_.Nextimg1.Click.raise(); }, [this] { model_.next(); }},
        {"previous", 4, [this] { list_.Previmg1.Click.raise(); }, [this] { model_.previous(); }},
        {"menu Previous", 1, [this] { list_.cP->Click.raise(previousItem_); },
         [this] { model_.menuPrevious(); }},
        {"stop", 2, [this] { list_.Stopimg1.Click.raise(); }, [this] { model_.stop(); }},
        {"play selected", 2, [this] { list_.cP->Click.raise(playSelected_); },
         [this] { model_.playSelected(); }},
        {"double click", 2, [this] { list_.PlayListLB.DblClick.raise(); }, [this] { model_.doubleClick(); }},
        {"main Play", 4, [this] { player_.Image1.Click.raise(); }, [this] { model_.mainPlay(); }},
        {"main Pause", 4,
         [this] {
             if (player_.Image3.Enabled())
                 player_.Image3.Click.raise();
         },
         [this] { model_.mainPause(); }},
        {"main Stop", 2, [this] { player_.Image2.Click.raise(); }, [this] { model_.mainStop(); }},
        {"select a row", 3, [this] { list_.PlayListLB.setListIndex(target_); },
         [this] { model_.selected = target_ = anyRow(); }},
        {"remove", 3, [this] { list_.PlayListLB.KeyDown.raise(46, 0); }, [this] { model_.remove(); }},
        {"move up", 1, [this] { list_.moveitemupimg.Click.raise(); }, [this] { model_.move(-1); }},
        {"move down", 1, [this] { list_.PlayListLB.KeyDown.raise(68, 1); }, [this] { model_.move(1); }},
        {"add a row", 5, [this] { addRow(); }, [this] { model_.add(newName_ = anyName()); }},
        {"new list", 1, [this] { list_.GoDoNew(); }, [this] { model_.clear(); }},
        {"pull or plug the stick", 1, [this] { plug(sound_.absent); },
         [this] {
             plugged_ = !plugged_;
             plug(model_.absent);
         }},
        {"the track ends", 14, [this] { sound_.trackEnds(); }, [this] { model_.trackEnds(); }},
        {"ticks", 1,
         [this] {
             list_.Timer1.Timer.raise();
             player_.Timer.Timer.raise();
         },
         [] {}},
    };
    std::int32_t startItem_ = 11, previousItem_ = 14, playSelected_ = 17, playFrom_ = 18;
};

}

TEST_CASE("Whatever the user does and whenever, the nest of runs is where the rules put it")
{
    int deepest = 0, acts = 0;
    for (unsigned seed = 1; seed <= 100; ++seed) {
        Walk walk(seed);
        const Text difference = walk.differs(1500);
        REQUIRE_MESSAGE(difference.empty(), "seed ", seed, " ", difference);
        deepest = std::max(deepest, walk.deepest());
        acts += walk.done();
    }
    CHECK(deepest >= 20); // or the walk saw no nest worth the name
    MESSAGE("acts: ", acts, ", deepest nest: ", deepest);
}
