// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/remote_control.h"

#include "platform/numbers.h"
#include "platform/paths.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "sliders/bar_rules.h"

#include <algorithm>

using Status = MediaRemote::Status;

RemoteControl::RemoteControl(Program& program) :
    program_(program), player_(program.startUp()), list_(program.playListEditor()),
    remote_(program.platform().makeMediaRemote()),
    tick_(player_, "RemoteControl", std::chrono::milliseconds(1))
{
    wire();
}

void RemoteControl::wire()
{
    tick_.Timer.calls([this] { show(); });
    remote_->Asked.calls([this] { show(); });
    remote_->Play.calls([this] { play(); });
    remote_->Pause.calls([this] { pause(); });
    remote_->PlayPause.calls([this] { playPause(); });
    remote_->Stop.calls([this] { stop(); });
    remote_->Next.calls([this] { next(); });
    remote_->Previous.calls([this] { previous(); });
    remote_->Seek.calls([this](std::int64_t by) { seek(by); });
    remote_->SetPosition.calls([this](std::uint64_t of, std::int64_t place) { setPosition(of, place); });
    remote_->SetVolume.calls([this](std::int32_t percent) { setVolume(percent); });
    remote_->Raise.calls([this] { program_.raise(); });
    remote_->Quit.calls([this] { player_.closeVLMimg_Click(); });
}

void RemoteControl::show()
{
    const MediaRemote::Shown now = shown();
    const std::int32_t place = engine().place();
    remote_->show(now, place);
    if (watch_.jumped({now.track, place, now.status == Status::playing, std::chrono::steady_clock::now()}))
        remote_->jumped(place);
}

bool RemoteControl::isWav() const { return player_.OpenSaveDialog1->FilterIndex() == kind::wav; }

const Hearing& RemoteControl::engine() const
{
    return isWav() ? static_cast<const Hearing&>(*player_.MMControl1) : *player_.Mp3Player;
}

std::int32_t RemoteControl::length() const
{
    return isWav() ? player_.MMControl1->Length() : player_.Mp3Player->Length();
}

// After a move in a pause the WAV engine sounds although the flag still says paused; and the flag may stand
// over a file that never sounded.
Status RemoteControl::status() const
{
    if (player_.mp3filename.Caption().empty())
        return Status::stopped;
    const Hearing::State state = engine().state();
    if (state == Hearing::State::sounding)
        return Status::playing;
    return state == Hearing::State::halted && player_.paused_flag == 1 ? Status::paused : Status::stopped;
}

// A WAV file has no labels but its name, and those of a file that is not open are those of another one.
bool RemoteControl::labelsAreOfCurrentFile() const { return !isWav() && length() > 0; }

bool RemoteControl::canSeek() const { return status() != Status::stopped && length() > 0; }

// A file that stands in the list twice is two tracks.
std::uint64_t RemoteControl::track()
{
    const Text path = player_.mp3filename.Caption();
    if (path != trackPath_ || list_.PlayIndex != trackRow_)
        ++track_;
    trackPath_ = path;
    trackRow_ = list_.PlayIndex;
    return track_;
}

MediaRemote::Shown RemoteControl::shown()
{
    MediaRemote::Shown now{.status = status(), .track = track(), .path = player_.mp3filename.Caption()};
    if (labelsAreOfCurrentFile()) {
        now.title = player_.stitle.Caption();
        now.artist = player_.sartist.Caption();
        now.album = player_.salbum.Caption();
        now.genre = player_.sgenre.Caption();
    }
    if (now.title.empty())
        now.title = fileTitle(now.path);
    now.length = length();
    now.volume = player_.volslider.Value();
    const std::int32_t rows = list_.PlayListLB.ListCount();
    now.canGoNext = list_.PlayIndex + 1 < rows;
    now.canGoPrevious = list_.PlayIndex > 0 && list_.PlayIndex <= rows;
    now.canSeek = canSeek();
    return now;
}

// Play on a playing file would begin it again, and without a file ask for one: a media key asks for neither.
void RemoteControl::play()
{
    if (status() != Status::playing && !player_.mp3filename.Caption().empty())
        player_.Image1_Click();
}

// The pause image is a toggle: where the flag says paused over a file that sounds, its first click ends that.
void RemoteControl::pause()
{
    if (status() != Status::playing)
        return;
    if (player_.paused_flag != 0)
        player_.Image3_Click();
    player_.Image3_Click();
}

void RemoteControl::playPause() { status() == Status::playing ? pause() : play(); }

void RemoteControl::stop()
{
    if (status() != Status::stopped)
        player_.Image2_Click();
}

void RemoteControl::next()
{
    if (shown().canGoNext)
        step(&PlayListEditor::Nextimg1_Click);
}

void RemoteControl::previous()
{
    if (shown().canGoPrevious)
        step(&PlayListEditor::Previmg1_Click);
}

// A stopped player stays so on its way through the list: the row then meets a pause, as the list's own start
// does after one, and "Play" begins it.
void RemoteControl::step(void (PlayListEditor::*click)())
{
    if (status() == Status::stopped)
        player_.paused_flag = 1;
    (list_.*click)();
}

// What lies beyond the end is the next track, or silence where there is none.
void RemoteControl::seek(std::int64_t by)
{
    if (!canSeek())
        return;
    const std::int64_t end = length();
    const std::int64_t place = engine().place() + std::clamp(by, -end, end + 1);
    if (place > end)
        list_.Nextimg1_Click();
    else
        moveTo(static_cast<std::int32_t>(std::max<std::int64_t>(place, 0)));
}

// A track that is no longer current was meant, or a place that it does not have: nobody means this one.
void RemoteControl::setPosition(std::uint64_t of, std::int64_t place)
{
    if (of == track() && canSeek() && place >= 0 && place <= length())
        moveTo(static_cast<std::int32_t>(place));
}

void RemoteControl::moveTo(std::int32_t place)
{
    if (isWav())
        moveWavTo(place);
    else
        player_.Mp3Player->Seek(
            roundToInteger32(place / static_cast<double>(player_.Mp3Player->FrameDuration())));
    const std::int32_t reached = engine().place();
    watch_.expect({track(), reached, status() == Status::playing, std::chrono::steady_clock::now()});
    show();
    remote_->jumped(reached);
}

// The engine has no seek: the file is opened anew. A pause stays one.
void RemoteControl::moveWavTo(std::int32_t place)
{
    MMControl& engine = *player_.MMControl1;
    const bool sounded = engine.state() == Hearing::State::sounding;
    engine.setCommand("Close");
    engine.setFileName(player_.mp3filename.Caption());
    engine.setCommand("Open");
    engine.setFrom(place);
    if (sounded)
        engine.setCommand("Play");
}

// The thumb of the volume bar is dropped where that volume is.
void RemoteControl::setVolume(std::int32_t percent)
{
    const Twips travel = player_.vslider_bg.Width() - player_.vslider_img2.Width();
    player_.vslider_bg_DragDrop(player_.vslider_img2, placeOfPercent(percent, travel), 0);
    show();
}
